/// A set of 2048 descriptors (256 bytes): what the frame and its driver hand to and fro. The C
/// library's own fd_set ends at 1024 and aborts above.
#pragma once

#include <bitset>
#include <cstddef>

namespace zem::util {

class FdSet {
 public:
  static constexpr int kCapacity = 2048;

  void clear_all() noexcept { bits_.reset(); }
  /// Descriptors outside 0..2047 are ignored, as they can not be waited on.
  void set(int fd) noexcept {
    if (in_range(fd)) bits_.set(static_cast<std::size_t>(fd));
  }
  void clear(int fd) noexcept {
    if (in_range(fd)) bits_.reset(static_cast<std::size_t>(fd));
  }
  [[nodiscard]] bool is_set(int fd) const noexcept {
    return in_range(fd) && bits_.test(static_cast<std::size_t>(fd));
  }
  [[nodiscard]] bool empty() const noexcept { return bits_.none(); }
  /// The lowest descriptor of the set at or above `fd`; kCapacity when there is none.
  [[nodiscard]] int next(int fd) const noexcept {
    return static_cast<int>(fd <= 0 ? bits_._Find_first()
                                    : bits_._Find_next(static_cast<std::size_t>(fd) - 1));
  }

 private:
  static bool in_range(int fd) noexcept { return fd >= 0 && fd < kCapacity; }
  std::bitset<kCapacity> bits_;
};
static_assert(sizeof(FdSet) == 256);

}  // namespace zem::util
