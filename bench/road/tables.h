/// The results of a run as Markdown tables, for a terminal and for docs/performance.md alike.
#pragma once

#include <string>

#include "bench/road/results.h"

namespace zem::bench {

/// Processor time, its ratio to the yardsticks, rate, memory and start-up: a table each, a row for
/// each road that was measured and a column for each number of FORMATs.
[[nodiscard]] std::string figure_tables(const Results& results);

/// The figures that must be reached: bound, aim, what was measured, and whether it holds.
[[nodiscard]] std::string verdict_table(const Results& results);

}  // namespace zem::bench
