#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/scenarios/scenario.h"
#include "tests/support/table.h"
#include "util/unique_fd.h"

namespace zem::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

class Signals : public Scenario {
 protected:
  [[nodiscard]] bool is_cleaned_up(int times = 1) const { return is_traced(kCleanedUp, times); }
};

TEST_F(Signals, TheCleanUpReleasesTheSourceAndLeavesTheDaemonAlive) {
  start();
  daemon().send(SIGTERM);
  ASSERT_TRUE(is_cleaned_up());
  EXPECT_TRUE(daemon().is_alive());
  EXPECT_THAT(open_files(daemon().pid()), Not(Contains(Pair(testing::_, home_.fifo_path()))));
  EXPECT_EQ(home_.lock_holder(), daemon().pid()) << "the lock file stays";

  expect_in_order(home_.trace(), {"Cleaning up...", "Cleanup driver ...", "Driver Cleanup complete",
                                  "Cleanup Z/EM interface ...", "Cleanup Error Module ...",
                                  "Finished Cleaning up, Exiting..."});
}

struct SequenceCase {
  const char* name;
  std::vector<int> cleaning;  ///< each cleans up, the daemon lives on
  int last;
  const char* end;
};

class SignalSequence : public Signals, public testing::WithParamInterface<SequenceCase> {};

TEST_P(SignalSequence, EndsByTheDefaultActionOfTheSecondSignalOfAKind) {
  start();
  int cleaned_up = 0;
  for (const int signal : GetParam().cleaning) {
    daemon().send(signal);
    ASSERT_TRUE(is_cleaned_up(++cleaned_up));
    ASSERT_TRUE(daemon().is_alive());
  }
  daemon().send(GetParam().last);
  EXPECT_EQ(daemon().end(), GetParam().end);
}

const SequenceCase kSequences[] = {
    {"TermTwice", {SIGTERM}, SIGTERM, "signal 15"},
    {"IntTwice", {SIGINT}, SIGINT, "signal 2"},
    {"TermThenIntCleansUpAgain", {SIGTERM, SIGINT}, SIGINT, "signal 2"},
    {"IntThenTermCleansUpAgain", {SIGINT, SIGTERM}, SIGTERM, "signal 15"},
};
INSTANTIATE_TEST_SUITE_P(Signals, SignalSequence, testing::ValuesIn(kSequences), kRowName);

TEST_F(Signals, SecondTermKillsTheIdleDaemonAlsoBehindAHangUp) {
  start();
  daemon().send(SIGTERM);
  ASSERT_TRUE(is_cleaned_up());
  daemon().send(SIGHUP);
  daemon().send(SIGINT);  // handled behind the SIGHUP
  ASSERT_TRUE(is_cleaned_up(2));
  EXPECT_THAT(home_.trace(), Not(HasSubstr("Restarting..."))) << "a hang-up has no effect any more";
  const std::string trace = home_.trace();
  daemon().send(SIGTERM);
  EXPECT_EQ(daemon().end(), "signal 15");
  EXPECT_EQ(home_.trace(), trace);
}

/// A FIFO in the place of the test file, with a reader that takes nothing: the daemon is held up in
/// its first write.
class FullFifo {
 public:
  explicit FullFifo(const std::string& path) {
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    reader_ = util::UniqueFd(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    while (::write(reader_.get(), "", 1) == 1) continue;
  }

 private:
  util::UniqueFd reader_;
};

/// True while the process would not die of the signal.
bool is_caught(int signal, pid_t pid) {
  const std::string status = read_file("/proc/" + std::to_string(pid) + "/status");
  const std::size_t at = status.find("SigCgt:");
  return at != status.npos &&
         ((std::stoull(status.substr(at + 7), nullptr, 16) >> (signal - 1)) & 1U) != 0;
}

TEST_F(Signals, SecondTermKillsWhileTheFirstStillWaits) {
  const FullFifo nobody_reads(home_ / "events");
  launch(usual_start());
  ASSERT_TRUE(is_traced("Starting main loop..."));
  daemon().send(SIGTERM);
  ASSERT_TRUE(eventually([this] { return !is_caught(SIGTERM, daemon().pid()); })) << "delivered";
  daemon().send(SIGTERM);
  EXPECT_EQ(daemon().end(), "signal 15");
  EXPECT_THAT(home_.trace(), Not(HasSubstr("Cleaning up...")));
}

TEST_F(Signals, TheIdleDaemonSleepsWithoutATimer) {
  start();
  daemon().send(SIGTERM);
  ASSERT_TRUE(is_cleaned_up());
  const std::string proc = "/proc/" + std::to_string(daemon().pid());
  EXPECT_TRUE(
      eventually([&] { return read_file(proc + "/stat").find(") S ") != std::string::npos; }));
  // ppoll, no descriptors, no time-out
  EXPECT_TRUE(eventually([&] {
    const std::string call = read_file(proc + "/syscall");
    return call.empty() || count_of(" 0x0", call) >= 3;
  })) << read_file(proc + "/syscall");
}

TEST_F(Signals, ManyHangUpsNeverKill) {
  start();
  for (int i = 0; i < 2000; ++i) daemon().send(SIGHUP);
  ASSERT_TRUE(is_traced(kReloaded));
  home_.log("still here\n");
  EXPECT_TRUE(
      eventually([this] { return home_.event_bytes().find("still here") != std::string::npos; }));
  EXPECT_TRUE(daemon().is_alive());
  EXPECT_THAT(home_.trace(), Not(HasSubstr("Event error"))) << "none of them hit the frame's wait";
}

}  // namespace
}  // namespace zem::test
