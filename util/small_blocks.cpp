#include "util/small_blocks.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

namespace zem::util {

/// Blocks that were released are a chain through their first bytes; behind `untouched` none has
/// been given out yet.
struct SmallBlocks::Region {
  static constexpr std::size_t kBytes = 64UL * 1024;

  explicit Region(std::size_t block_size) : block_bytes(block_size) {}

  [[nodiscard]] bool is_full() const {
    return released == nullptr && untouched + block_bytes > kBytes;
  }
  [[nodiscard]] bool holds(const void* block) const {
    return std::less_equal<>()(static_cast<const void*>(bytes), block) &&
           std::less<>()(block, static_cast<const void*>(bytes + kBytes));
  }
  void* take() {
    ++in_use;
    if (released == nullptr) return bytes + std::exchange(untouched, untouched + block_bytes);
    void* block = released;
    std::memcpy(&released, block, sizeof released);
    return block;
  }
  void put_back(void* block) {
    --in_use;
    std::memcpy(block, &released, sizeof released);
    released = block;
  }

  std::size_t block_bytes;
  std::size_t in_use = 0;
  std::size_t untouched = 0;
  void* released = nullptr;
  alignas(void*) std::byte bytes[kBytes];  // NOLINT(cppcoreguidelines-avoid-c-arrays): raw memory
};

SmallBlocks::SmallBlocks() = default;
SmallBlocks::~SmallBlocks() = default;

void* SmallBlocks::allocate(std::size_t size) noexcept try {
  const std::size_t block_bytes = (size + kStep - 1) / kStep * kStep;
  std::vector<Region*>& candidates = with_room(block_bytes);
  Region* region = candidates.empty() ? add_region(block_bytes) : candidates.back();
  void* block = region->take();
  if (region->is_full()) candidates.pop_back();
  return block;
} catch (const std::bad_alloc&) {
  return nullptr;
}

SmallBlocks::Region* SmallBlocks::add_region(std::size_t block_bytes) {
  std::vector<Region*>& candidates = with_room(block_bytes);
  // Every region of this size may have room one day: releasing must not need memory.
  candidates.reserve(regions_.size() + 1);
  auto added = std::unique_ptr<Region>(new Region(block_bytes));  // NOLINT: bytes stay as they are
  Region* region = added.get();
  const auto place =
      std::ranges::upper_bound(regions_, region, std::less<>(), &std::unique_ptr<Region>::get);
  regions_.insert(place, std::move(added));
  candidates.push_back(region);
  return region;
}

SmallBlocks::Region* SmallBlocks::region_of(const void* block) const noexcept {
  const auto behind = std::ranges::upper_bound(
      regions_, block, std::less<>(),
      [](const std::unique_ptr<Region>& region) -> const void* { return region.get(); });
  if (behind == regions_.begin()) return nullptr;
  Region* region = std::prev(behind)->get();
  return region->holds(block) ? region : nullptr;
}

std::size_t SmallBlocks::size_of(const void* block) const noexcept {
  const Region* region = region_of(block);
  return region == nullptr ? 0 : region->block_bytes;
}

bool SmallBlocks::release(void* block) noexcept {
  Region* region = region_of(block);
  if (region == nullptr) return false;
  std::vector<Region*>& candidates = with_room(region->block_bytes);
  if (region->is_full()) candidates.push_back(region);
  region->put_back(block);
  if (region->in_use == 0 && candidates.size() > 1) drop_region(region);
  return true;
}

void SmallBlocks::drop_region(Region* region) noexcept {
  std::erase(with_room(region->block_bytes), region);
  std::erase_if(regions_, [&](const auto& each) { return each.get() == region; });
}

}  // namespace zem::util
