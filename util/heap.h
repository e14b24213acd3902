/// Memory of the prescribed records, which pass from owner to owner as plain pointers and are
/// released by their own free functions. All of it comes from here, so that a test can let any
/// single request fail and see what the caller makes of it.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace zem::util {

/// `size` bytes, zeroed; null when memory is short. Released with `release`.
[[nodiscard]] void* allocate(std::size_t size) noexcept;
/// Null is allowed.
void release(void* memory) noexcept;
/// Changes the size of a block from `allocate` (null allowed); null when memory is short, and the
/// block stays as it was then. New bytes are not zeroed.
[[nodiscard]] void* reallocate(void* memory, std::size_t size) noexcept;
/// A NUL-terminated copy of `text`; null when memory is short.
[[nodiscard]] char* duplicate(std::string_view text) noexcept;

struct Release {
  void operator()(void* memory) const noexcept { release(memory); }
};
/// A text or a buffer on its way to a record that will own it.
using HeapText = std::unique_ptr<char, Release>;

/// Deleter for records with a prescribed free function.
template <auto Free>
struct FreeWith {
  template <class T>
  void operator()(T* record) const {
    Free(record);
  }
};

/// For tests: the request after `successes` further ones fails, once; requests after it succeed.
class ScopedAllocationFailure {
 public:
  explicit ScopedAllocationFailure(int successes) noexcept;
  ScopedAllocationFailure(const ScopedAllocationFailure&) = delete;
  ScopedAllocationFailure& operator=(const ScopedAllocationFailure&) = delete;
  ~ScopedAllocationFailure();
};

}  // namespace zem::util
