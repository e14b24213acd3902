/// The figures that must be reached, and whether a run of script/bench reached them.
#pragma once

#include <string>
#include <vector>

#include "bench/road/results.h"

namespace zem::bench {

struct Verdict {
  std::string subject;
  double must = 0;
  double aim = 0;
  double measured = 0;
  bool at_least = false;  ///< the measured value must not be below; otherwise not above

  [[nodiscard]] bool holds() const { return reaches(must); }
  [[nodiscard]] bool reaches_aim() const { return reaches(aim); }

 private:
  [[nodiscard]] bool reaches(double bound) const {
    return at_least ? measured >= bound : measured <= bound;
  }
};

/// One for each figure whose roads were measured.
[[nodiscard]] std::vector<Verdict> judge(const Results& results);

}  // namespace zem::bench
