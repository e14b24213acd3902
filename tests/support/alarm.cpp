#include "tests/support/alarm.h"

#include <sys/time.h>

#include "util/expect.h"

namespace zem::test {
namespace {

util::Note note_of_alarm = util::Note::kPoll;

extern "C" void on_test_alarm(int /*signal*/) { util::leave_note(note_of_alarm); }

timeval to_timeval(ScopedAlarm::Microseconds span) {
  return {.tv_sec = span.count() / 1'000'000, .tv_usec = span.count() % 1'000'000};
}

void start_timer(ScopedAlarm::Microseconds first, ScopedAlarm::Microseconds period) {
  const itimerval timer = {.it_interval = to_timeval(period), .it_value = to_timeval(first)};
  util::expect(::setitimer(ITIMER_REAL, &timer, nullptr) == 0, "a timer can be started");
}

}  // namespace

ScopedAlarm::ScopedAlarm(util::Note note, Microseconds first, Microseconds period) {
  note_of_alarm = note;
  struct sigaction action {};
  action.sa_handler = on_test_alarm;
  util::expect(::sigaction(SIGALRM, &action, &before_) == 0, "SIGALRM can be handled");
  start_timer(first, period);
}

ScopedAlarm::~ScopedAlarm() {
  start_timer({}, {});
  ::sigaction(SIGALRM, &before_, nullptr);
  forget_all_notes();
}

void forget_all_notes() noexcept {
  for (const auto note : {util::Note::kReload, util::Note::kCleanup, util::Note::kPoll}) {
    util::take_note(note);
  }
}

}  // namespace zem::test
