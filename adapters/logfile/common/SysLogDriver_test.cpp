#include "adapters/logfile/common/SysLogDriver.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "agent/agent_comm.h"
#include "tests/support/alarm.h"
#include "tests/support/daemon_home.h"
#include "tests/support/fake_clock.h"
#include "util/signal_notes.h"

namespace {

using zem::util::Note;

class SysLogDriverTest : public testing::Test {
 protected:
  ~SysLogDriverTest() override { zem::test::forget_all_notes(); }

  /// The next line, "(none)" when the wait ended without one.
  std::string line() {
    const char* text = driver().getLine();
    return text != nullptr ? text : "(none)";
  }
  SysLogDriver& driver() {
    if (driver_ == nullptr) {
      driver_ = std::make_unique<SysLogDriver>(home_.fmt_path().c_str(), home_.lock_path().c_str(),
                                               home_.fifo_path().c_str(), nullptr, 120,
                                               (home_ / "unmatched").c_str());
    }
    return *driver_;
  }

  zem::test::DaemonHome home_;
  std::unique_ptr<SysLogDriver> driver_;
};

TEST_F(SysLogDriverTest, WritesItsProcessIdWithANulByte) {
  driver();
  EXPECT_EQ(zem::test::read_file(home_.lock_path()), std::to_string(::getpid()) + "\n" + '\0');
}

TEST_F(SysLogDriverTest, ReportsTheLockFileToWaitOn) {
  pollfd reported{driver().iodesc(), POLLIN, 0};
  EXPECT_EQ(::poll(&reported, 1, 0), 1) << "ready although no message waits";
}

TEST_F(SysLogDriverTest, APendingReloadOrCleanUpEndsTheWaitAndKeepsTheHalfReadLine) {
  driver();
  home_.log("whole\nha");
  EXPECT_EQ(line(), "whole\n");
  for (const Note note : {Note::kReload, Note::kCleanup}) {
    zem::util::leave_note(note);
    EXPECT_EQ(line(), "(none)");
    int index = 0;
    EXPECT_EQ(driver().nextMsg(index), nullptr);
    EXPECT_EQ(index, SysLogDriver::kNoMessage);
    zem::util::take_note(note);
  }
  home_.log("lf\n");
  EXPECT_EQ(line(), "half\n");
}

TEST_F(SysLogDriverTest, TheWaitEndsWhenTheServerIsToBeTriedAgain) {
  struct Hurrying : zem::test::FakeClock {
    [[nodiscard]] zem::util::Milliseconds now() const override {
      return passed += std::chrono::hours(1);
    }
    mutable zem::util::Milliseconds passed{0};
  } clock;
  const zem::util::ScopedDouble<zem::util::Clock> scope(clock);
  ZEMAD_no_connection = 1;
  EXPECT_EQ(line(), "(none)");
  home_.log("late\n");
  EXPECT_EQ(line(), "late\n") << "a line that is there is never kept waiting";
  ZEMAD_no_connection = 0;
}

TEST_F(SysLogDriverTest, ALineIsGivenOutBeforeTheDriverGoesToSleepForANote) {
  driver();
  home_.log("one\ntwo\n");
  EXPECT_EQ(line(), "one\n");
  zem::util::leave_note(Note::kReload);
  EXPECT_EQ(line(), "two\n") << "it was in the buffer already";
  EXPECT_EQ(line(), "(none)");
}

TEST_F(SysLogDriverTest, AFileInTheFifosPlaceIsReadOnceAndDoesNotSpin) {
  std::filesystem::remove(home_.fifo_path());
  std::ofstream(home_.fifo_path()) << "one\n";
  zem::test::FakeClock clock;
  clock.on_sleep = [](auto) {
    zem::util::leave_note(Note::kCleanup);
    return false;
  };
  const zem::util::ScopedDouble<zem::util::Clock> scope(clock);
  EXPECT_EQ(line(), "one\n");
  EXPECT_EQ(line(), "(none)");
  EXPECT_EQ(clock.sleeps.size(), 1U);
}

TEST_F(SysLogDriverTest, ALockFileThatIsASymbolicLinkEndsTheProcess) {
  std::filesystem::create_symlink(home_ / "elsewhere", home_.lock_path());
  EXPECT_EXIT(driver(), testing::ExitedWithCode(1), "");
  EXPECT_FALSE(std::filesystem::exists(home_ / "elsewhere"));
}

}  // namespace
