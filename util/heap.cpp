#include "util/heap.h"

#include <algorithm>
#include <cstdlib>

namespace zem::util {
namespace {

constexpr int kNoFailure = -1;
int successes_before_failure = kNoFailure;

/// True for the one request that a test wants to fail.
bool must_fail() noexcept {
  if (successes_before_failure == kNoFailure) return false;
  return successes_before_failure-- == 0;
}

}  // namespace

// This module is the one place that talks to the C heap: the records it serves change hands as
// plain pointers, and their buffers grow in place.
// NOLINTBEGIN(cppcoreguidelines-no-malloc)

void* allocate(std::size_t size) noexcept {
  return must_fail() ? nullptr : std::calloc(1, std::max<std::size_t>(size, 1));
}

void release(void* memory) noexcept { std::free(memory); }

void* reallocate(void* memory, std::size_t size) noexcept {
  return must_fail() ? nullptr : std::realloc(memory, std::max<std::size_t>(size, 1));
}

// NOLINTEND(cppcoreguidelines-no-malloc)

char* duplicate(std::string_view text) noexcept {
  auto* copy = static_cast<char*>(allocate(text.size() + 1));
  if (copy != nullptr) std::copy(text.begin(), text.end(), copy);
  return copy;
}

ScopedAllocationFailure::ScopedAllocationFailure(int successes) noexcept {
  successes_before_failure = successes;
}

ScopedAllocationFailure::~ScopedAllocationFailure() { successes_before_failure = kNoFailure; }

}  // namespace zem::util
