#include "util/signal_notes.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <random>

#include "tests/support/alarm.h"
#include "tests/support/pipe.h"

namespace zem::util {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;
using test::ScopedAlarm;

constexpr NoteSet kAnyNote = Note::kReload | Note::kCleanup | Note::kPoll;
/// Only reached by a wait that misses its event.
constexpr auto kFarAway = Milliseconds(30'000);

class SignalNotes : public testing::Test {
 protected:
  ~SignalNotes() override { test::forget_all_notes(); }

  WaitEnd wait(std::optional<Milliseconds> time_out, NoteSet ends_on) {
    fds_[0] = {.fd = pipe_.out.get(), .events = POLLIN, .revents = 0};
    return wait_for(fds_, time_out, ends_on);
  }

  test::Pipe pipe_;
  std::array<pollfd, 1> fds_{};
};

TEST_F(SignalNotes, ANoteIsTakenOnceHoweverOftenItWasLeft) {
  leave_note(Note::kReload);
  leave_note(Note::kReload);
  EXPECT_TRUE(is_noted(Note::kReload));
  EXPECT_FALSE(is_noted(Note::kCleanup));
  EXPECT_TRUE(take_note(Note::kReload));
  EXPECT_FALSE(take_note(Note::kReload));
}

TEST_F(SignalNotes, OnlyReloadAndCleanupMakeLongWaitsUnwelcome) {
  leave_note(Note::kPoll);
  EXPECT_FALSE(is_wait_unwelcome());
  leave_note(Note::kCleanup);
  EXPECT_TRUE(is_wait_unwelcome());
}

TEST_F(SignalNotes, WaitEndsByDescriptorOrTimeOut) {
  EXPECT_EQ(wait(Milliseconds(0), kAnyNote), WaitEnd::kTimedOut);
  EXPECT_EQ(wait(Milliseconds(-5), kAnyNote), WaitEnd::kTimedOut);
  pipe_.write("x");
  EXPECT_EQ(wait(std::nullopt, kAnyNote), WaitEnd::kReady);
  EXPECT_EQ(fds_[0].revents, POLLIN);
}

TEST_F(SignalNotes, PendingNoteWinsOverReadyDescriptor) {
  pipe_.write("x");
  leave_note(Note::kPoll);
  EXPECT_EQ(wait(kFarAway, kAnyNote), WaitEnd::kNoted);
  EXPECT_EQ(wait(kFarAway, Note::kReload | Note::kCleanup), WaitEnd::kReady);
}

TEST_F(SignalNotes, SignalWithoutAWantedNoteInterrupts) {
  const ScopedAlarm alarm(Note::kPoll, microseconds(100), microseconds(1000));
  EXPECT_EQ(wait(kFarAway, Note::kReload | Note::kCleanup), WaitEnd::kInterrupted);
  EXPECT_TRUE(is_noted(Note::kPoll));
}

// The alarm falls before, into and behind the entry of the wait, round by round. A wait that lets
// one slip in between its look at the notes and its sleep ends no sooner than its time-out here.
TEST_F(SignalNotes, NoSignalIsSleptThrough) {
  std::minstd_rand random(4711);
  std::uniform_int_distribution<int> delay_us(1, 40);
  for (int round = 0; round < 3000; ++round) {
    const ScopedAlarm alarm(Note::kReload, microseconds(delay_us(random)), microseconds(0));
    const auto start = steady_clock::now();
    ASSERT_EQ(wait(kFarAway, kAnyNote), WaitEnd::kNoted) << "round " << round;
    ASSERT_LT(steady_clock::now() - start, kFarAway) << "slept through in round " << round;
  }
}

TEST_F(SignalNotes, WaitLeavesTheSignalMaskAlone) {
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR2);
  sigset_t before;
  pthread_sigmask(SIG_SETMASK, &blocked, &before);
  EXPECT_EQ(wait(Milliseconds(0), kAnyNote), WaitEnd::kTimedOut);
  leave_note(Note::kReload);
  EXPECT_EQ(wait(Milliseconds(0), kAnyNote), WaitEnd::kNoted);

  sigset_t after;
  pthread_sigmask(SIG_SETMASK, &before, &after);
  EXPECT_TRUE(sigismember(&after, SIGUSR2));
  EXPECT_FALSE(sigismember(&after, SIGALRM));
  EXPECT_FALSE(sigismember(&after, SIGHUP));
}

}  // namespace
}  // namespace zem::util
