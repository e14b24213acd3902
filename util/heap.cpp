#include "util/heap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "util/small_blocks.h"

namespace zem::util {
namespace {

constexpr int kNoFailure = -1;
int successes_before_failure = kNoFailure;

/// True for the one request that a test wants to fail.
bool must_fail() noexcept {
  if (successes_before_failure == kNoFailure) return false;
  return successes_before_failure-- == 0;
}

/// Small blocks hide from the address sanitizer what is done to records that are gone.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kSmallMax = 0;
#else
constexpr std::size_t kSmallMax = SmallBlocks::kSizeMax;
#endif

/// For the life of the process: records are released until its very end.
SmallBlocks& small_blocks() {
  static SmallBlocks* const blocks = std::make_unique<SmallBlocks>().release();
  return *blocks;
}

}  // namespace

// This module is the one place that talks to the C heap: the records it serves change hands as
// plain pointers, and their buffers grow in place.
// NOLINTBEGIN(cppcoreguidelines-no-malloc)

void* allocate(std::size_t size) noexcept {
  if (must_fail()) return nullptr;
  const std::size_t wanted = std::max<std::size_t>(size, 1);
  if (wanted > kSmallMax) return std::calloc(1, wanted);
  void* block = small_blocks().allocate(wanted);
  if (block != nullptr) std::memset(block, 0, wanted);
  return block;
}

void release(void* memory) noexcept {
  if (!small_blocks().release(memory)) std::free(memory);
}

void* reallocate(void* memory, std::size_t size) noexcept {
  if (must_fail()) return nullptr;
  const std::size_t wanted = std::max<std::size_t>(size, 1);
  const std::size_t small_bytes = small_blocks().size_of(memory);
  if (small_bytes == 0) return std::realloc(memory, wanted);
  if (wanted <= small_bytes) return memory;
  void* grown = std::malloc(wanted);
  if (grown == nullptr) return nullptr;
  std::memcpy(grown, memory, small_bytes);
  release(memory);
  return grown;
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
