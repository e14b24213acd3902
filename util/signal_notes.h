/// What a signal handler leaves behind, and the only wait that reads it. A handler calls
/// `leave_note` and nothing else; the work happens where the main flow looks at its notes, between
/// events, when nothing is half done. Signals stay open all the time; they are blocked only from
/// the look at the notes to the entry into ppoll(2), so that no note falls between the two.
#pragma once

#include <poll.h>

#include <optional>
#include <span>

#include "util/clock.h"

namespace zem::util {

enum class Note : unsigned {
  kReload = 1,   ///< SIGHUP: re-read the configuration
  kCleanup = 2,  ///< SIGTERM, SIGINT: release everything
  kPoll = 4,     ///< SIGALRM: look at the further log files
};

/// Async-signal-safe; callable from any handler. Leaving a note twice is leaving it once.
void leave_note(Note note) noexcept;
[[nodiscard]] bool is_noted(Note note) noexcept;
/// Forgets the note; true when it was there.
bool take_note(Note note) noexcept;

/// True when a reload or a clean-up waits for its safe point: long waits end then.
[[nodiscard]] inline bool is_wait_unwelcome() noexcept {
  return is_noted(Note::kReload) || is_noted(Note::kCleanup);
}

enum class WaitEnd {
  kReady,        ///< at least one descriptor has its event (see revents)
  kTimedOut,     ///< the whole time-out passed
  kNoted,        ///< one of the notes asked for is pending, on entry or since; nothing was awaited
  kInterrupted,  ///< a signal was handled that left none of the notes asked for
  kFailed,       ///< ppoll failed; errno says why
};

/// Notes that end a wait, joined by |.
enum class NoteSet : unsigned { kNone = 0 };
[[nodiscard]] constexpr NoteSet operator|(NoteSet set, Note note) noexcept {
  return static_cast<NoteSet>(static_cast<unsigned>(set) | static_cast<unsigned>(note));
}
[[nodiscard]] constexpr NoteSet operator|(Note a, Note b) noexcept {
  return NoteSet::kNone | a | b;
}

/// Waits until a descriptor of `fds` is ready, `time_out` has passed (nothing: wait without end) or
/// a note of `ends_on` is pending. A pending note wins over a ready descriptor.
[[nodiscard]] WaitEnd wait_for(std::span<pollfd> fds, std::optional<Milliseconds> time_out,
                               NoteSet ends_on);

}  // namespace zem::util
