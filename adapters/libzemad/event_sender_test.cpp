/// Events gathered and events sent one by one, on a fake clock and network: nobody outside can tell
/// them apart.
#include "adapters/libzemad/event_sender.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/main_loop.h"
#include "adapters/libzemad/zem_io.h"
#include "agent/agent_comm.h"
#include "tests/support/client_config.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_connector.h"
#include "tests/support/fake_port_mapper.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/log_capture.h"
#include "tests/support/send_script.h"
#include "tests/support/temp_dir.h"
#include "util/signal_notes.h"
#include "util/text.h"

namespace zem::frame {
namespace {

using Texts = std::vector<std::string>;

const std::string kAlpha = "10.0.0.1:5529";
const std::string kBeta = "10.0.0.2:5530";
const std::string kServers =
    "ServerLocation=10.0.0.1,10.0.0.2\nServerPort=5529,5530\nConnectionMode=co\n";

enum class Way { kDirect, kGathered };

/// A daemon's way out with its world around it.
class WayOut {
 public:
  /// `up` are the servers that are up from the start.
  explicit WayOut(Way way, std::set<std::string> up = {}) : way_(way) {
    network_.up = std::move(up);
    log_.listen(log::kZemIo, {log::kMajor}).listen(log::kKernel, {log::kMinor});
  }
  ~WayOut() {
    zem_agent_cleanup();
    test::configure_client(dir_, "");
    default_buffer_config = {};
  }

  void configure(const std::string& lines) {
    test::configure_client(dir_, lines);
    zem_agent_send("");
  }

  /// As the main loop sends events while input is at hand until the last.
  void send(const Texts& burst) {
    for (const std::string& text : burst) {
      pass(text);
      retry_connection();
    }
    send_gathered();
    retry_connection();
  }

  /// From now on the connection made last takes so many bytes, and then fails.
  void break_after(std::size_t bytes) {
    left_ = bytes;
    breaking_ = network_.peers.size();
  }

  /// A server goes down, having read everything.
  void stop(const std::string& server) {
    collect();
    network_.stop(server);
  }

  /// What arrived at a server since the last call.
  std::string take(const std::string& server) {
    collect();
    return std::exchange(arrived_[server], {});
  }
  [[nodiscard]] std::string cached() const {
    return test::read_file(test::client_cache_path(dir_));
  }
  [[nodiscard]] Texts log_lines() const { return log_.lines(); }

  test::TempDir dir_;
  test::FakeClock clock_;
  test::FakeConnector network_;
  std::size_t sends_ = 0;
  /// The most that one send takes, given its size; 0: nothing at the moment.
  std::function<std::size_t(std::size_t)> appetite_ = [](std::size_t size) { return size; };

 private:
  void pass(const std::string& text) {
    if (way_ == Way::kDirect) return report(send_event_text(text));
    const GatheringScope gathering;
    report(send_event_text(text));
  }

  static void report(bool was_sent) {
    if (!was_sent) log::report(kSource, log::kMinor, 1, "SendEvent error");
  }

  void collect() {
    for (const std::string& server : {kAlpha, kBeta})
      arrived_[server] += network_.take_bytes(server);
  }

  ssize_t allow(std::size_t size) {
    ++sends_;
    collect();  // nobody is ever slow
    if (network_.peers.size() == breaking_) {
      if (left_ == 0) return -ECONNRESET;
      size = std::min(size, left_);
    }
    size = std::min(size, appetite_(size));
    if (network_.peers.size() == breaking_) left_ -= size;
    return size == 0 ? -EAGAIN : static_cast<ssize_t>(size);
  }

  Way way_;
  test::LogCapture log_;
  test::FakeResolver resolver_;
  test::FakePortMapper mapper_;
  util::ScopedDouble<util::Clock> clock_scope_{clock_};
  util::ScopedDouble<util::Resolver> resolver_scope_{resolver_};
  util::ScopedDouble<agent::Connector> network_scope_{network_};
  util::ScopedDouble<agent::PortMapper> mapper_scope_{mapper_};
  std::map<std::string, std::string> arrived_;
  std::size_t breaking_ = 0;
  std::size_t left_ = 0;
  test::SendScript script_{[this](std::size_t size) { return allow(size); }};
};

Texts numbered(int count) {
  Texts texts;
  for (int i = 0; i < count; ++i) texts.push_back("N" + std::to_string(i) + ";a=b;END\n");
  return texts;
}

std::string framed(const std::string& text) {
  const std::string event = text + "\x01";
  const auto size = static_cast<char>(event.size());
  return "<START>>" + std::string(23, '\0') + size + std::string(3, '\0') + size + event;
}

template <class Each>
std::string join(const Texts& texts, Each each) {
  std::string joined;
  for (const std::string& text : texts) joined += each(text);
  return joined;
}
std::string in_cache(const std::string& text) { return text + "\x01"; }

class EventSender : public testing::Test {
 protected:
  EventSender() { testing::internal::CaptureStderr(); }  // notices of the cache
  ~EventSender() override {
    testing::internal::GetCapturedStderr();
    for (const util::Note note : {util::Note::kReload, util::Note::kCleanup}) util::take_note(note);
  }
};

TEST_F(EventSender, GatheredEventsLeaveInOneCall) {
  WayOut out(Way::kGathered, {kAlpha});
  out.configure(kServers);
  out.sends_ = 0;
  out.send(numbered(100));
  EXPECT_EQ(out.sends_, 1U);
  EXPECT_EQ(out.take(kAlpha), join(numbered(100), framed));
  out.send(Texts(1'000, numbered(1)[0]));
  EXPECT_EQ(out.sends_, 2U) << "64 KiB hold more than a thousand of these";
}

TEST_F(EventSender, WhatWasGatheredLeavesBeforeAnythingElse) {
  const auto gather = [](const std::string& text) {
    const GatheringScope gathering;
    EXPECT_TRUE(send_event_text(text));
  };
  WayOut out(Way::kGathered, {kAlpha});
  out.configure(kServers);
  const Texts texts = numbered(5);
  gather(texts[0]);
  EXPECT_EQ(out.take(kAlpha), "");
  send_event_text(texts[1]);
  EXPECT_EQ(out.take(kAlpha), framed(texts[0]) + framed(texts[1])) << "a direct event";
  gather(texts[2]);
  zem_agent_send("");
  EXPECT_EQ(out.take(kAlpha), framed(texts[2])) << "the empty event";
  gather(texts[3]);
  ZEMAD_AboutToWait();
  EXPECT_EQ(out.take(kAlpha), framed(texts[3])) << "a wait";
  gather(texts[4]);
  zem_agent_cleanup();
  EXPECT_EQ(out.take(kAlpha), framed(texts[4])) << "a reload or clean-up";
}

TEST_F(EventSender, WhatIsReportedOfLaterEventsStandsBehindAGatheredOne) {
  WayOut out(Way::kGathered);
  out.configure(kServers);
  {
    const GatheringScope gathering;
    EXPECT_TRUE(send_event_text(numbered(1)[0]));
    log::report(kSource, log::kMinor, 2, "GetEvent error");
  }
  EXPECT_THAT(
      out.log_lines(),
      testing::ElementsAre("MAJOR ZEMIO 1 Event could not be sent properly",
                           "MINOR KERNEL 1 SendEvent error", "MINOR KERNEL 2 GetEvent error"));
  EXPECT_EQ(zemad_errno, 300'002);
}

TEST_F(EventSender, WhoTracesSeesOneEventAfterTheOther) {
  WayOut out(Way::kGathered, {kAlpha});
  out.configure(kServers);
  test::LogCapture trace;
  trace.listen(log::kDriver, {log::kLow});
  out.sends_ = 0;
  out.send(numbered(3));
  EXPECT_EQ(out.sends_, 3U);
}

/// The connection fails after each number of bytes in turn, somewhere in an event or between two.
class BrokenAfter : public EventSender, public testing::WithParamInterface<bool> {};

TEST_P(BrokenAfter, AnyByteEachEventArrivesOnceAndInOrder) {
  const bool has_second_location = GetParam();
  const Texts burst = numbered(5);
  const std::string all = join(burst, framed);
  for (std::size_t bytes = 0; bytes < all.size(); ++bytes) {
    WayOut out(Way::kGathered, {kAlpha});
    out.configure(kServers + "RetryInterval=5\n");
    out.network_.up.clear();
    if (has_second_location) out.network_.up = {kBeta};
    out.break_after(bytes);
    out.send(burst);
    const auto whole = static_cast<std::ptrdiff_t>(bytes / framed(burst[0]).size());
    const Texts left(burst.begin() + whole, burst.end());
    ASSERT_EQ(out.take(kAlpha), all.substr(0, bytes));
    ASSERT_EQ(out.take(kBeta), has_second_location ? join(left, framed) : "") << "after " << bytes;
    ASSERT_EQ(out.cached(), has_second_location ? "" : join(left, in_cache)) << "after " << bytes;
    ASSERT_EQ(out.clock_.sleeps.size(), 1U) << "one retry wait, as for a single event";
  }
}

INSTANTIATE_TEST_SUITE_P(EventSender, BrokenAfter, testing::Bool(), [](const auto& tested) {
  return tested.param ? "AndASecondLocation" : "AndNoOther";
});

TEST_F(EventSender, TheCacheIsFlushedBehindTheFirstEventThatArrives) {
  WayOut out(Way::kGathered, {kAlpha});
  out.configure(kServers);
  const Texts texts = numbered(5);
  zem_toggle_send();  // the cache fills while the connection is good
  out.send({texts[0], texts[1]});
  EXPECT_EQ(out.cached(), in_cache(texts[0]) + in_cache(texts[1]));
  zem_toggle_send();
  out.send({texts[2], texts[3], texts[4]});
  EXPECT_EQ(out.take(kAlpha), framed(texts[2]) + framed(texts[0]) + framed(texts[1]) +
                                  framed(texts[3]) + framed(texts[4]));
  EXPECT_EQ(out.cached(), "");
}

TEST_F(EventSender, ASecondaryLocationIsLeftAfter64EventsInTheMiddleOfABatch) {
  WayOut out(Way::kGathered, {kBeta});
  out.configure(kServers + "RetryInterval=10\n");
  const Texts burst = numbered(100);
  out.network_.up.insert(kAlpha);
  out.send(burst);
  // The empty event of the start counts as one.
  EXPECT_EQ(out.take(kBeta), join({burst.begin(), burst.begin() + 63}, framed));
  EXPECT_EQ(out.take(kAlpha), join({burst.begin() + 63, burst.end()}, framed));
  EXPECT_THAT(out.clock_.sleeps, testing::SizeIs(2)) << "the retry interval, once";
}

TEST_F(EventSender, ACleanUpDoesNotWaitForServersOnceForEachGatheredEvent) {
  WayOut out(Way::kGathered, {kAlpha});
  out.configure(kServers);
  out.network_.stop(kAlpha);
  out.network_.attempts.clear();
  {
    const GatheringScope gathering;
    for (const std::string& text : numbered(50)) send_event_text(text);
  }
  util::leave_note(util::Note::kCleanup);
  EXPECT_FALSE(heed_notes());
  EXPECT_LE(out.network_.attempts.size(), 4U) << "those of the first event";
  EXPECT_EQ(out.cached(), join(numbered(50), in_cache));
}

// Anything, both ways -----------------------------------------------------------------------------

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) { return random() % limit; }
bool one_in(Random& random, std::size_t count) { return below(random, count) == 0; }

std::string random_event(Random& random) {
  if (one_in(random, 60)) return ";END\n";
  std::string text = std::vector<std::string>{"A", "B", "Held", "Uncached"}[below(random, 4)];
  const std::size_t size = one_in(random, 40)    ? 1'900 + below(random, 300)
                           : one_in(random, 150) ? 66'000
                                                 : below(random, 200);
  return text + ";v=" + std::string(size, one_in(random, 20) ? '\x01' : 'x') + ";n='a;b';END\n";
}

std::string random_configuration(Random& random, const test::TempDir& dir) {
  std::string lines = kServers;
  if (one_in(random, 8)) lines = "TestMode=YES\nServerLocation=" + (dir / "sent") + "\n";
  if (one_in(random, 8)) lines = "ServerLocation=10.0.0.1,10.0.0.2\nServerPort=5529,5530\n";
  if (one_in(random, 3)) lines += "Filter:Class=Held;\n";
  if (one_in(random, 3)) lines += "FilterCache:Class=Uncached;\n";
  if (one_in(random, 8)) lines += "FilterMode=IN\n";
  if (one_in(random, 8)) lines += "BufferEvents=NO\n";
  if (one_in(random, 6)) lines += "BufEvtMaxSize=4\nBufEvtShrinkSize=1\nEventMaxSize=500\n";
  return lines + "RetryInterval=" + std::to_string(1 + below(random, 20)) + "\n";
}

/// One history of the world, told by its seed; everything that can be seen from outside.
std::string history(unsigned seed, Way way) {
  Random random(seed);
  Random appetite(seed);  // its own: the ways ask differently often
  WayOut out(way);
  out.appetite_ = [&](std::size_t size) {
    return one_in(appetite, 3) ? size : below(appetite, size + 1);
  };
  const auto change_world = [&] {
    for (const std::string& server : {kAlpha, kBeta}) {
      if (one_in(random, 2)) out.network_.up.insert(server);
      if (one_in(random, 4)) out.stop(server);
    }
    if (one_in(random, 2)) out.break_after(below(random, 12'000));
    if (one_in(random, 10)) zem_toggle_send();
  };
  change_world();
  out.configure(random_configuration(random, out.dir_));
  for (int burst = 0; burst < 6; ++burst) {
    change_world();
    Texts texts(below(random, 120));
    std::ranges::generate(texts, [&] { return random_event(random); });
    out.send(texts);
  }
  std::string seen = "alpha:" + out.take(kAlpha) + "\nbeta:" + out.take(kBeta) +
                     "\ncache:" + out.cached() + "\nfile:" + test::read_file(out.dir_ / "sent") +
                     "\nsleeps:" + std::to_string(out.clock_.sleeps.size()) +
                     "\nno connection:" + std::to_string(ZEMAD_no_connection) + "\nattempts:";
  for (const std::string& server : out.network_.attempts) seen += server + "\n";
  for (const std::string& line : out.log_lines()) seen += line + "\n";
  return seen;
}

/// ZEM_HISTORIES asks for more than the usual number.
TEST_F(EventSender, NoHistoryTellsGatheredEventsFromDirectOnes) {
  const char* const asked = std::getenv("ZEM_HISTORIES");
  const int histories = asked == nullptr ? 15 : util::saturating_atoi(asked);
  unsigned seed = std::random_device()();
  for (int i = 0; i < histories; ++i, ++seed) {
    const bool is_same = history(seed, Way::kGathered) == history(seed, Way::kDirect);
    ASSERT_TRUE(is_same) << "seed " << seed;
  }
}

}  // namespace
}  // namespace zem::frame
