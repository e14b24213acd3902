#include "tests/support/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t count = 0;

}  // namespace

std::size_t zem::test::allocation_count() { return count; }

// The operators for arrays, and those that do not throw, come down to these.
void* operator new(std::size_t bytes) {
  ++count;
  void* const memory = std::malloc(bytes > 0 ? bytes : 1);  // NOLINT: this is what new is made of
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }  // NOLINT: see above
void operator delete(void* memory, std::size_t /*bytes*/) noexcept { std::free(memory); }  // NOLINT
