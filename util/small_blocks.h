/// Small blocks without the bookkeeping that the C heap adds to each: the records of a class file
/// are hundreds of thousands of blocks of 8 to 40 bytes, which would occupy half as much again. The
/// blocks of one size share regions of memory; a region without a block in use is given back.
/// util/heap.h uses them, and nobody else needs to.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace zem::util {

class SmallBlocks {
 public:
  static constexpr std::size_t kSizeMax = 48;

  SmallBlocks();
  SmallBlocks(const SmallBlocks&) = delete;
  SmallBlocks& operator=(const SmallBlocks&) = delete;
  ~SmallBlocks();

  /// A block of at least `size` bytes, 1 to kSizeMax, aligned for a pointer; null when memory is
  /// short.
  [[nodiscard]] void* allocate(std::size_t size) noexcept;
  /// Bytes of the block, or 0 for memory from elsewhere.
  [[nodiscard]] std::size_t size_of(const void* block) const noexcept;
  /// False, and nothing is done, for memory from elsewhere.
  bool release(void* block) noexcept;
  /// Regions in use.
  [[nodiscard]] std::size_t regions() const noexcept { return regions_.size(); }

 private:
  static constexpr std::size_t kStep = alignof(void*);
  struct Region;

  [[nodiscard]] Region* region_of(const void* block) const noexcept;
  Region* add_region(std::size_t block_bytes);
  void drop_region(Region* region) noexcept;
  [[nodiscard]] std::vector<Region*>& with_room(std::size_t block_bytes) noexcept {
    return with_room_[(block_bytes - 1) / kStep];
  }

  std::vector<std::unique_ptr<Region>> regions_;  ///< by address
  std::array<std::vector<Region*>, kSizeMax / kStep> with_room_;
};

}  // namespace zem::util
