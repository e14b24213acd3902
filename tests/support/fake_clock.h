/// A clock that a test moves by hand: sleeping takes no time, it moves `now` and is recorded.
#pragma once

#include <functional>
#include <vector>

#include "util/clock.h"

namespace zem::test {

class FakeClock : public util::Clock {
 public:
  [[nodiscard]] util::Milliseconds now() const override { return now_; }

  bool sleep(util::Milliseconds span) override {
    sleeps.push_back(span);
    now_ += span;
    return on_sleep ? on_sleep(span) : true;
  }

  void advance(util::Milliseconds span) { now_ += span; }

  std::vector<util::Milliseconds> sleeps;            ///< every sleep asked for, in order
  std::function<bool(util::Milliseconds)> on_sleep;  ///< what happens meanwhile; its result counts

 private:
  util::Milliseconds now_{1'000'000};
};

}  // namespace zem::test
