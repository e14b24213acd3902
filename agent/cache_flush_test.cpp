#include "agent/cache_flush.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "agent/agent_comm.h"
#include "agent/evt_buffer.h"
#include "tests/support/fake_clock.h"
#include "tests/support/temp_dir.h"
#include "util/seam.h"
#include "util/signal_notes.h"

namespace zem::agent {
namespace {

using util::Milliseconds;
using util::Note;

/// A cache of one-letter events ("a.b.c." in the tests, each dot an event's end) and a server that
/// takes what it is told to.
class Flushing : public testing::Test {
 protected:
  Flushing() {
    testing::internal::CaptureStderr();
    set_rate(0);
  }
  ~Flushing() override {
    testing::internal::GetCapturedStderr();
    default_buffer_config = {};
    util::take_note(Note::kCleanup);
    ZEMAD_no_connection = 0;
  }

  void set_rate(std::uint16_t rate, std::int64_t block_bytes = 65536) {
    default_buffer_config = {path_, 1'000'000, 8192, block_bytes, 4096, rate, true, true};
  }
  void fill(std::string text) {
    std::replace(text.begin(), text.end(), '.', '\x01');
    home_.write("cache", text);
  }
  [[nodiscard]] std::string content() const {
    std::string text = test::read_file(path_);
    std::replace(text.begin(), text.end(), '\x01', '.');
    return text;
  }

  /// Flushes; events posted are in `posted_`, those that `answer_` refused are back in the file.
  int flush() {
    auto file = CacheFile::open(path_, CacheFile::Missing::kFail);
    EXPECT_TRUE(file && file->lock());
    const auto post = [this](const char* event) {
      posted_ += event;
      return answer_(event);
    };
    const int count = flush_cache(*file, default_buffer_config, post, zem_buffer_event);
    std::replace(posted_.begin(), posted_.end(), '\x01', '.');
    return count;
  }

  test::TempDir home_;
  std::string path_ = home_ / "cache";
  test::FakeClock clock_;
  util::ScopedDouble<util::Clock> clock_scope_{clock_};
  std::function<int(const char*)> answer_ = [](const char*) { return 1; };
  std::string posted_;
};

struct FlushCase {
  const char* name;
  const char* before;
  const char* answers;  ///< per event: s sent, k kept (put back), h held back, f failed
  const char* posted;
  int count;
  const char* after;
};

const FlushCase kFlushCases[] = {
    {"Nothing", "", "", "", 0, ""},
    {"SendsOldestFirst", "aa.b.ccc.", "sss", "aa.b.ccc.", 3, ""},
    {"SkipsEmptyEvents", "..a...b..", "ss", "a.b.", 2, ""},
    {"OnlyEmptyEvents", "....", "", "", 0, ""},
    {"CutsATornTailAndSendsNoPieceOfIt", "a.b.to", "ss", "a.b.", 2, ""},
    {"OnlyATornTail", "to", "", "", 0, ""},
    {"FailedOnesMoveToTheEnd", "a.b.c.d.", "skks", "a.b.c.d.", 4, "b.c."},
    {"AllFailed", "a.b.c.", "kkk", "a.b.c.", 3, "a.b.c."},
    {"HeldBackOnesLeaveUncounted", "a.b.c.", "shs", "a.b.c.", 2, ""},
    {"OneThatIsNowhereStaysAtTheTop", "a.b.c.", "sf", "a.b.", 1, "b.c."},
    {"NowhereBehindAFailedOne", "a.b.c.", "kf", "a.b.", 1, "b.c.a."}};

class CacheFlush : public Flushing,
                   public testing::WithParamInterface<std::tuple<FlushCase, std::int64_t>> {};
TEST_P(CacheFlush, PostsEachEventOnce) {
  const auto& [tested, block_bytes] = GetParam();
  set_rate(0, block_bytes);
  fill(tested.before);
  const char* answers = tested.answers;
  answer_ = [&](const char* event) {
    const char answer = *answers++;
    if (answer == 'k') return zem_buffer_event(event);
    return answer == 's' ? 1 : answer == 'h' ? 0 : -1;
  };
  EXPECT_EQ(flush(), tested.count);
  EXPECT_EQ(posted_, tested.posted);
  EXPECT_EQ(content(), tested.after);
}
INSTANTIATE_TEST_SUITE_P(Table, CacheFlush,
                         testing::Combine(testing::ValuesIn(kFlushCases),
                                          testing::Values(1, 2, 3, 65536)),
                         [](const auto& tested) {
                           return std::get<0>(tested.param).name + std::string("Block") +
                                  std::to_string(std::get<1>(tested.param));
                         });

TEST_F(Flushing, EventsAppendedMeanwhileWaitForTheNextFlush) {
  fill("a.b.");
  answer_ = [this](const char* event) {
    if (*event == 'a') std::ofstream(path_, std::ios::app) << "new\x01";
    return 1;
  };
  EXPECT_EQ(flush(), 2);
  EXPECT_EQ(content(), "new.");
}

TEST_F(Flushing, PausesAMinuteAfterEveryRateEvents) {
  set_rate(2);
  fill("a.b.c.d.e.f.");
  std::string at_pauses;
  clock_.on_sleep = [&](Milliseconds) {
    at_pauses += content() + " ";
    return true;
  };
  EXPECT_EQ(flush(), 6);
  EXPECT_EQ(posted_, "a.b.c.d.e.f.");
  EXPECT_EQ(clock_.sleeps, std::vector<Milliseconds>(3, Milliseconds{60'000}));
  EXPECT_EQ(at_pauses, "c.d.e.f. e.f.  ") << "the head is gone before each pause";
}

TEST_F(Flushing, APendingCleanupEndsItAfterTheEventInHand) {
  fill("a.b.c.");
  answer_ = [](const char* event) {
    if (*event == 'b') util::leave_note(Note::kCleanup);
    return 1;
  };
  EXPECT_EQ(flush(), 2);
  EXPECT_EQ(content(), "c.");

  util::take_note(Note::kCleanup);
  set_rate(1);
  fill("a.b.c.");
  posted_.clear();
  clock_.on_sleep = [](Milliseconds) { return false; };
  EXPECT_EQ(flush(), 1) << "and ends a pause";
  EXPECT_EQ(content(), "b.c.");
}

TEST_F(Flushing, ServersThatDoNotAnswerAreNotTriedForEveryEvent) {
  fill("a.b.c.");
  answer_ = [this](const char* event) {
    if (*event == 'a') return 1;
    clock_.advance(Milliseconds{5'000});
    ZEMAD_no_connection = 1;
    return zem_buffer_event(event);
  };
  EXPECT_EQ(flush(), 3);
  EXPECT_EQ(posted_, "a.b.") << "c would wait as long, and goes back without a try";
  EXPECT_EQ(content(), "b.c.");
}

/// Another process that takes the file's lock, says so, and holds it until it is let go.
class LockHolder {
 public:
  explicit LockHolder(const std::string& path) {
    int ready[2];
    EXPECT_EQ(::pipe(ready), 0);
    child_ = ::fork();
    if (child_ == 0) {
      auto file = CacheFile::open(path, CacheFile::Missing::kFail);
      const char result = file && file->lock() ? 'y' : 'n';
      static_cast<void>(::write(ready[1], &result, 1));
      ::pause();
    }
    EXPECT_EQ(::read(ready[0], &has_lock_, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  LockHolder(const LockHolder&) = delete;
  LockHolder& operator=(const LockHolder&) = delete;
  ~LockHolder() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  [[nodiscard]] bool has_lock() const { return has_lock_ == 'y'; }

 private:
  pid_t child_ = -1;
  char has_lock_ = 'n';
};

TEST_F(Flushing, OneFlushAtATimeAmongProcesses) {
  fill("a.b.");
  zem_handle handle;
  const LockHolder other(path_);
  ASSERT_TRUE(other.has_lock());
  EXPECT_EQ(zem_flush_events(&handle), 0);
  EXPECT_EQ(content(), "a.b.");
  EXPECT_FALSE(handle.flushing);
}

TEST_F(Flushing, ALockThatWasLostEndsTheFlush) {
  fill("a.b.c.");
  std::unique_ptr<LockHolder> other;
  answer_ = [&](const char* event) {
    const int kept = zem_buffer_event(event);  // closing the file gives the lock up
    other = std::make_unique<LockHolder>(path_);
    return kept;
  };
  EXPECT_EQ(flush(), 0);
  EXPECT_TRUE(other->has_lock());
  EXPECT_EQ(content(), "a.b.c.a.") << "the other flush is free to go on";
}

TEST_F(Flushing, DoesNotShrinkTheFileUnderItself) {
  default_buffer_config.max_bytes = 6;
  default_buffer_config.shrink_bytes = 1;
  fill("a.b.c.");
  answer_ = [](const char* event) { return zem_buffer_event(event); };
  zem_handle handle;
  send_events = 0;
  EXPECT_EQ(zem_flush_events(&handle), 3);
  send_events = 1;
  EXPECT_EQ(content(), "a.b.c.");
  EXPECT_FALSE(handle.flushing || is_flush_under_way());
}

TEST_F(Flushing, GoesToTheServerUnfilteredAsItWasKept) {
  fill("A;x=1;END\n.B;END\n.");
  zem_handle handle;
  handle.test_mode = true;
  const std::string sink = home_ / "sink";
  handle.test_stream = std::fopen(sink.c_str(), "we");
  EXPECT_EQ(zem_flush_events(&handle), 2);
  std::fclose(handle.test_stream);
  EXPECT_EQ(test::read_file(sink),
            "A;x=1;END\n\x01\n"
            "B;END\n\x01\n");
}

TEST_F(Flushing, AFileThatIsNotThereIsItsErrno) {
  zem_handle handle;
  EXPECT_EQ(zem_flush_events(&handle), ENOENT);
  EXPECT_FALSE(std::filesystem::exists(path_)) << "nothing is created";
  EXPECT_EQ(zem_flush_events_from_file(&handle, home_.path().c_str()), EISDIR);
  EXPECT_FALSE(handle.flushing);
}

}  // namespace
}  // namespace zem::agent
