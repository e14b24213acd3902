#include "util/clock.h"

#include "util/expect.h"
#include "util/signal_notes.h"

namespace zem::util {
namespace {

constexpr NoteSet kEndsSleep = Note::kReload | Note::kCleanup;

class SystemClock final : public Clock {
 public:
  [[nodiscard]] Milliseconds now() const override {
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Milliseconds>(since_start);
  }

  bool sleep(Milliseconds span) override {
    const auto start = std::chrono::steady_clock::now();
    while (true) {
      const auto passed = std::chrono::steady_clock::now() - start;
      // Rounded up: a wait that is resumed never ends a fraction early, and never spins either.
      const Milliseconds rest = std::chrono::ceil<Milliseconds>(span - passed);
      const WaitEnd end = wait_for({}, rest, kEndsSleep);
      expect(end != WaitEnd::kFailed, "a wait without descriptors can not fail");
      if (end != WaitEnd::kInterrupted) return end == WaitEnd::kTimedOut;
    }
  }
};

}  // namespace

template <>
Clock& system_implementation<Clock>() {
  static SystemClock clock;
  return clock;
}

}  // namespace zem::util
