/// The wait in three steps, for a reload that is asked for by SIGHUP:
///
///   all signals blocked   a SIGHUP that came before has left its note: the look finds it
///   notes looked at       a SIGHUP that comes now stays pending with the kernel
///   ppoll, signals open   ... and is handled the moment ppoll enters: it ends with EINTR
///
/// However it falls, the wait ends at once. When ppoll finds a ready descriptor first, the signal
/// is handled as soon as the old mask is back, and its note still wins.
#include "util/signal_notes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <csignal>

namespace zem::util {
namespace {

volatile std::sig_atomic_t pending[3];

volatile std::sig_atomic_t& slot_of(Note note) noexcept {
  return pending[std::countr_zero(static_cast<unsigned>(note))];
}

bool is_any_noted(NoteSet set) noexcept {
  return std::ranges::any_of(
      std::array{Note::kReload, Note::kCleanup, Note::kPoll}, [set](Note note) {
        return (static_cast<unsigned>(set) & static_cast<unsigned>(note)) != 0 && is_noted(note);
      });
}

/// All signals blocked for the length of a scope.
class SignalsBlocked {
 public:
  SignalsBlocked() noexcept {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  [[nodiscard]] const sigset_t& before() const noexcept { return before_; }

 private:
  sigset_t before_{};
};

timespec to_timespec(Milliseconds span) noexcept {
  const auto ms = std::max(span, Milliseconds::zero()).count();
  return {.tv_sec = ms / 1000, .tv_nsec = ms % 1000 * 1'000'000};
}

/// Enters ppoll with the signals open, unless one of the notes is there already.
WaitEnd wait_unless_noted(std::span<pollfd> fds, std::optional<Milliseconds> time_out,
                          NoteSet ends_on) {
  const timespec limit = to_timespec(time_out.value_or(Milliseconds::zero()));
  const SignalsBlocked blocked;
  if (is_any_noted(ends_on)) return WaitEnd::kNoted;
  const int ready = ::ppoll(fds.data(), fds.size(), time_out ? &limit : nullptr, &blocked.before());
  if (ready > 0) return WaitEnd::kReady;
  if (ready == 0) return WaitEnd::kTimedOut;
  return errno == EINTR ? WaitEnd::kInterrupted : WaitEnd::kFailed;
}

}  // namespace

void leave_note(Note note) noexcept { slot_of(note) = 1; }

bool is_noted(Note note) noexcept { return slot_of(note) != 0; }

bool take_note(Note note) noexcept {
  if (!is_noted(note)) return false;
  slot_of(note) = 0;
  return true;
}

WaitEnd wait_for(std::span<pollfd> fds, std::optional<Milliseconds> time_out, NoteSet ends_on) {
  const WaitEnd end = wait_unless_noted(fds, time_out, ends_on);
  return is_any_noted(ends_on) ? WaitEnd::kNoted : end;
}

}  // namespace zem::util
