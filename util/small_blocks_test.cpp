#include "util/small_blocks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace zem::util {
namespace {

TEST(SmallBlocks, KnowsItsBlocksAndNoOthers) {
  SmallBlocks blocks;
  std::size_t elsewhere = 0;
  EXPECT_EQ(blocks.size_of(&elsewhere), 0U);
  EXPECT_FALSE(blocks.release(&elsewhere));
  EXPECT_FALSE(blocks.release(nullptr));
  for (const auto& [size, bytes] : {std::pair{1U, 8U}, {8U, 8U}, {9U, 16U}, {48U, 48U}}) {
    void* block = blocks.allocate(size);
    EXPECT_EQ(blocks.size_of(block), bytes);
    EXPECT_TRUE(blocks.release(block));
  }
}

/// Every block is filled, and looked at when it is given back.
TEST(SmallBlocks, KeepTheirContentWhateverIsDoneToTheOthers) {
  struct Block {
    void* memory;
    std::size_t size;
    int filling;
  };
  SmallBlocks blocks;
  std::vector<Block> held;
  std::mt19937 random(1);
  const auto pick = [&](std::size_t below) { return random() % below; };
  const auto give_back_one = [&] {
    std::swap(held[pick(held.size())], held.back());
    const Block block = held.back();
    held.pop_back();
    const std::vector<unsigned char> expected(block.size,
                                              static_cast<unsigned char>(block.filling));
    ASSERT_EQ(std::memcmp(block.memory, expected.data(), block.size), 0);
    ASSERT_TRUE(blocks.release(block.memory));
  };
  for (int i = 0; i < 100'000; ++i) {
    const std::size_t size = 1 + pick(SmallBlocks::kSizeMax);
    held.push_back({blocks.allocate(size), size, i & 0xff});
    std::memset(held.back().memory, i & 0xff, size);
    if (pick(3) == 0) give_back_one();
  }
  const std::size_t most = blocks.regions();
  while (!held.empty()) give_back_one();
  EXPECT_GT(most, 20U);
  EXPECT_LE(blocks.regions(), SmallBlocks::kSizeMax / alignof(void*))
      << "one for each size is kept";
}

TEST(SmallBlocks, AFullRegionHasRoomAgainWhenABlockComesBack) {
  SmallBlocks blocks;
  std::vector<void*> held;
  while (blocks.regions() < 2) held.push_back(blocks.allocate(48));
  void* early = held.front();
  ASSERT_TRUE(blocks.release(early));
  EXPECT_EQ(blocks.allocate(48), early);
}

}  // namespace
}  // namespace zem::util
