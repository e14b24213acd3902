/// Counts what the program takes from the heap through `new`, so that a test can want nothing to be
/// taken. Link zem_allocation_count, which replaces the global operators of the whole program.
#pragma once

#include <cstddef>

namespace zem::test {

/// Allocations since the program began.
[[nodiscard]] std::size_t allocation_count();

}  // namespace zem::test
