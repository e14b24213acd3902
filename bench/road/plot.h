/// The results of a run as a picture: microseconds of processor time a message against the number
/// of FORMATs, both axes logarithmic, one line for each road.
#pragma once

#include <string>

#include "bench/road/results.h"

namespace zem::bench {

/// An SVG document. Ours are drawn thick, others thin.
[[nodiscard]] std::string plot(const Results& results);

}  // namespace zem::bench
