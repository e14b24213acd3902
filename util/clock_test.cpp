#include "util/clock.h"

#include <gtest/gtest.h>

#include "tests/support/alarm.h"
#include "util/signal_notes.h"

namespace zem::util {
namespace {

using std::chrono::hours;
using std::chrono::microseconds;
using test::ScopedAlarm;

class SystemClock : public testing::Test {
 protected:
  ~SystemClock() override { test::forget_all_notes(); }
  Clock& clock_ = system_implementation<Clock>();
};

TEST_F(SystemClock, InterruptedSleepIsResumedForTheRest) {
  constexpr auto kSpan = Milliseconds(30);
  const ScopedAlarm alarm(Note::kPoll, microseconds(500), microseconds(1000));
  const auto start = clock_.now();
  EXPECT_TRUE(clock_.sleep(kSpan));
  EXPECT_GE(clock_.now() - start + Milliseconds(1), kSpan);
  EXPECT_TRUE(is_noted(Note::kPoll));
}

TEST_F(SystemClock, ReloadOrCleanupDuringTheSleepEndsIt) {
  for (const Note note : {Note::kReload, Note::kCleanup}) {
    const ScopedAlarm alarm(note, microseconds(200), microseconds(0));
    EXPECT_FALSE(clock_.sleep(hours(1)));
    EXPECT_TRUE(is_noted(note)) << "the note is left for whoever acts on it";
  }
}

TEST_F(SystemClock, ReloadBeforeTheSleepEndsItAtOnce) {
  leave_note(Note::kReload);
  EXPECT_FALSE(clock_.sleep(hours(1)));
}

}  // namespace
}  // namespace zem::util
