/// Time as the daemon sees it. Retry intervals, pauses and time-outs read `now` and wait by `sleep`
/// of the current clock; a test moves one by hand.
#pragma once

#include <chrono>

#include "util/seam.h"

namespace zem::util {

using Seconds = std::chrono::seconds;
using Milliseconds = std::chrono::milliseconds;

class Clock {
 public:
  virtual ~Clock() = default;

  /// Monotonic time since some fixed moment; never jumps with the wall clock.
  [[nodiscard]] virtual Milliseconds now() const = 0;

  /// Waits for the whole of `span`: an interrupting signal does not shorten it, with one exception.
  /// A pending reload or clean-up (util/signal_notes.h), noted before or during the wait, ends it
  /// at once. Returns false in that case, true when the whole span has passed.
  virtual bool sleep(Milliseconds span) = 0;
};

template <>
Clock& system_implementation<Clock>();

}  // namespace zem::util
