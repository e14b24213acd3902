// What a process leaves in the cache file when it is killed: before every single system call of a
// flush or of a burst of appends, and at every block boundary inside a longer write.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "agent/cache_flush.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "agent/file_blocks.h"
#include "tests/support/call_tracer.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "util/signal_notes.h"

namespace zem::agent {
namespace {

using Events = std::vector<std::string>;

/// Events of many lengths, each recognisable by its number.
std::string make_event(std::size_t number) {
  std::string text("E");
  text.append(std::to_string(number))
      .append(";")
      .append((number + 8) * 37 % 611, 'x')
      .append("END\n\x01");
  return text;
}

Events make_events(std::size_t count) {
  Events events;
  for (std::size_t i = 0; i < count; ++i) events.push_back(make_event(i));
  return events;
}

std::string join(const Events& events) {
  std::string text;
  for (const std::string& event : events) text += event;
  return text;
}

Events split(std::string_view text) {
  Events events;
  for (std::size_t end = text.find(kEventEnd); end != std::string_view::npos;
       end = text.find(kEventEnd)) {
    events.emplace_back(text.substr(0, end + 1));
    text.remove_prefix(end + 1);
  }
  return events;
}

std::size_t number_of(const std::string& event) { return std::stoul(event.substr(1)); }
bool by_number(const std::string& a, const std::string& b) { return number_of(a) < number_of(b); }

class CacheCrash : public testing::Test {
 protected:
  ~CacheCrash() override { default_buffer_config = {}; }

  void configure(std::int64_t max_bytes, std::int64_t shrink_bytes) {
    default_buffer_config = {path_, max_bytes, shrink_bytes, 4096, 700, 0, true, true};
  }

  /// Runs `work` in a process that is looked at before each system call: `check` is called for each
  /// new state of the file that a kill could leave.
  void for_each_state(const std::function<void()>& work,
                      const std::function<void(const std::string& state)>& check) {
    std::string last = "none";
    const auto check_once = [&](const std::string& state) {
      if (state != std::exchange(last, state) && !HasFailure()) check(state);
    };
    const auto visit = [&](const test::SystemCall& call) {
      const std::string state = test::read_file(path_);
      check_once(state);
      if (const auto write = test::pending_write(call, path_)) check_torn(state, *write, check);
    };
    const auto silent = [&] {
      if (std::freopen("/dev/null", "w", stderr) != nullptr) work();
    };
    EXPECT_TRUE(test::run_stopping(silent, visit));
    check(test::read_file(path_));
  }

  /// The events that the next flush finds in `state`.
  Events recover(const std::string& state) {
    const std::string path = home_.write("state", state);
    Events events;
    auto file = CacheFile::open(path, CacheFile::Missing::kFail);
    EXPECT_TRUE(file && file->lock());
    const auto post = [&](const char* event) {
      events.emplace_back(event);
      return 1;
    };
    flush_cache(*file, default_buffer_config, post, post);
    EXPECT_EQ(file->size().value(), 0) << "all is sent, nothing is left";
    return events;
  }

  test::TempDir home_;
  std::string path_ = home_ / "cache";

 private:
  void check_torn(std::string state, const test::PendingWrite& write,
                  const std::function<void(const std::string&)>& check) {
    const std::size_t at = write.at == -1 ? state.size() : static_cast<std::size_t>(write.at);
    const auto block = static_cast<std::size_t>(kAtomicBlock);
    for (std::size_t end = (at / block + 1) * block; end < at + write.bytes.size(); end += block) {
      state.resize(std::max(state.size(), end));
      state.replace(at, end - at, write.bytes, 0, end - at);
      if (!HasFailure()) check(state);
    }
  }
};

struct CrashCase {
  const char* name;
  std::size_t events;
  bool keeps_order;
  char (*answer)(std::size_t number);  ///< s sent, k kept, c sent and a clean-up is pending
};

class FlushCrash : public CacheCrash, public testing::WithParamInterface<CrashCase> {
 protected:
  /// The flush under test: what is sent goes to the file "sink".
  void flush_to_sink() {
    const int sink = ::open((home_ / "sink").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    std::size_t number = 0;
    const auto post = [&](const char* event) {
      const char answer = GetParam().answer(number++);
      if (answer == 'k') return zem_buffer_event(event);
      if (answer == 'c') util::leave_note(util::Note::kCleanup);
      return static_cast<int>(::write(sink, event, std::strlen(event)));
    };
    auto file = CacheFile::open(path_, CacheFile::Missing::kFail);
    if (file && file->lock()) flush_cache(*file, default_buffer_config, post, post);
  }
};

TEST_P(FlushCrash, RepeatsOneEventAtMostAndLosesNone) {
  configure(100'000'000, 8192);
  const Events events = make_events(GetParam().events);
  home_.write("cache", join(events));
  for_each_state([&] { flush_to_sink(); },
                 [&](const std::string& state) {
                   Events delivered = split(test::read_file(home_ / "sink"));
                   const Events recovered = recover(state);
                   delivered.insert(delivered.end(), recovered.begin(), recovered.end());
                   ASSERT_LE(delivered.size(), events.size() + 1) << "one is repeated at most";
                   if (!GetParam().keeps_order) std::ranges::sort(delivered, by_number);
                   delivered.erase(std::unique(delivered.begin(), delivered.end()),
                                   delivered.end());
                   ASSERT_EQ(delivered, events) << "none is lost, damaged or out of order";
                 });
}
const CrashCase kFlushCrashCases[] = {
    {"AllSent", 300, true, [](std::size_t) { return 's'; }},
    {"AllKept", 80, false, [](std::size_t) { return 'k'; }},
    {"EveryThirdKept", 80, false, [](std::size_t number) { return number % 3 == 0 ? 'k' : 's'; }},
    {"CleanupHalfWay", 300, true, [](std::size_t number) { return number == 100 ? 'c' : 's'; }},
    {"CleanupAtOnce", 40, true, [](std::size_t) { return 'c'; }}};
INSTANTIATE_TEST_SUITE_P(Table, FlushCrash, testing::ValuesIn(kFlushCrashCases), test::kRowName);

TEST_F(CacheCrash, AppendsWithShrinkingKeepARunOfWholeEvents) {
  constexpr std::size_t kAppends = 300;
  configure(16'384, 4'096);
  const std::string counter = home_.write("counter", "");
  const auto append_all = [&] {
    const int fd = ::open(counter.c_str(), O_WRONLY | O_APPEND);
    for (std::size_t i = 0; i < kAppends; ++i) {
      if (zem_buffer_event(make_event(i).c_str()) <= 0 || ::write(fd, ".", 1) != 1) ::_exit(1);
    }
  };
  std::size_t oldest_allowed = 0;
  for_each_state(append_all, [&](const std::string& state) {
    const std::size_t done = test::read_file(counter).size();
    const Events left = recover(state);
    if (done == 0 && left.empty()) return;
    ASSERT_FALSE(left.empty());
    const std::size_t first = number_of(left.front());
    for (std::size_t i = 0; i < left.size(); ++i) ASSERT_EQ(left[i], make_event(first + i));
    ASSERT_GE(first + left.size(), done) << "what was appended is there";
    ASSERT_LE(first + left.size(), done + 1);
    ASSERT_GE(first, oldest_allowed) << "what was dropped stays dropped";
    oldest_allowed = first;
    ASSERT_TRUE(first == 0 || join(left).size() > 16'384 - 4'096 - 2 * 700)
        << "no more is dropped than it takes";
  });
  EXPECT_GT(oldest_allowed, 200U) << "the file was shrunk many times";
}

/// Cuts the head, and lets another process append `event` just before system call `at` of the cut:
/// what was appended, or nothing when the cut makes no so many calls. Deliberate: not before the
/// truncation, the one call between which and the last look at the size an append is lost.
std::optional<std::string> cut_with_append(const std::string& path, long bytes, std::size_t at,
                                           const std::string& event) {
  std::size_t calls = 0;
  std::optional<std::string> appended;
  const auto visit = [&](const test::SystemCall& call) {
    if (calls++ != at) return;
    appended = call.number == SYS_ftruncate ? "" : event;
    std::ofstream(path, std::ios::app | std::ios::binary) << *appended;
  };
  const auto cut = [&] { ::_exit(trunc_at_top(path.c_str(), bytes) == 0 ? 0 : 1); };
  EXPECT_TRUE(test::run_stopping(cut, visit));
  return appended;
}

TEST_F(CacheCrash, KeepsWhatAnotherProcessAppendsDuringACut) {
  const Events events = make_events(40);
  const auto gone = static_cast<std::ptrdiff_t>(events.size() / 3);
  const std::string rest = join({events.begin() + gone, events.end()});
  std::size_t at = 0;
  for (;; ++at) {
    home_.write("cache", join(events));
    const auto bytes = static_cast<long>(test::read_file(path_).size() - rest.size());
    const auto appended = cut_with_append(path_, bytes, at, make_event(40));
    if (!appended) break;
    EXPECT_EQ(test::read_file(path_), rest + *appended) << "before call " << at;
  }
  EXPECT_GT(at, 10U) << "calls were looked at";
}

/// The append falls between any two states of the file, and the kill on any state after it.
TEST_F(CacheCrash, FinishesACutBehindWhichAnotherProcessHasAppended) {
  configure(100'000'000, 8192);
  const Events events = make_events(40);
  const auto gone = static_cast<std::ptrdiff_t>(events.size() / 3);
  const std::string all = join(events);
  const std::string rest = join({events.begin() + gone, events.end()});
  const std::string added = make_event(40);
  for (int appended_at = 0; appended_at < 8; ++appended_at) {
    home_.write("cache", all);
    int states = 0;
    const auto cut = [&] {
      static_cast<void>(trunc_at_top(path_.c_str(), static_cast<long>(all.size() - rest.size())));
    };
    for_each_state(cut, [&](const std::string& state) {
      const std::string left = join(recover(state));
      const std::string tail = state.find(added) == state.npos ? "" : added;
      ASSERT_TRUE(left == all + tail || left == rest + tail) << appended_at << "\n" << left;
      if (states++ == appended_at) std::ofstream(path_, std::ios::app | std::ios::binary) << added;
    });
    EXPECT_GT(states, appended_at);
    EXPECT_EQ(test::read_file(path_), rest + added);
  }
}

}  // namespace
}  // namespace zem::agent
