/// SIGALRM from a real timer for the length of a scope; its handler leaves one note, as the
/// daemon's handlers do. At the end the timer, the handler and all notes are as they were.
#pragma once

#include <chrono>
#include <csignal>

#include "util/signal_notes.h"

namespace zem::test {

class ScopedAlarm {
 public:
  using Microseconds = std::chrono::microseconds;

  /// First alarm after `first`, then one every `period`; a period of zero: only the first.
  ScopedAlarm(util::Note note, Microseconds first, Microseconds period);
  ScopedAlarm(const ScopedAlarm&) = delete;
  ScopedAlarm& operator=(const ScopedAlarm&) = delete;
  ~ScopedAlarm();

 private:
  struct sigaction before_ {};
};

/// No note is pending afterwards.
void forget_all_notes() noexcept;

}  // namespace zem::test
