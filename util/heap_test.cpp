#include "util/heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace zem::util {
namespace {

using Bytes = std::unique_ptr<unsigned char, Release>;

Bytes allocate_bytes(std::size_t size) {
  return Bytes(static_cast<unsigned char*>(allocate(size)));
}

TEST(Heap, NewMemoryIsZeroedAlsoWhenItIsReused) {
  constexpr std::size_t kSize = 64;
  for (int round = 0; round < 3; ++round) {
    const Bytes block = allocate_bytes(kSize);
    EXPECT_TRUE(std::all_of(block.get(), block.get() + kSize, [](auto b) { return b == 0; }));
    std::fill_n(block.get(), kSize, static_cast<unsigned char>(0xff));
  }
  EXPECT_NE(allocate_bytes(0), nullptr) << "an empty request is no failure";
}

TEST(Heap, DuplicateEndsInNulAndKeepsWhatIsInside) {
  const HeapText copy(duplicate(std::string_view("a\0b", 3)));
  EXPECT_EQ(std::string(copy.get(), 4), std::string("a\0b\0", 4));
  EXPECT_STREQ(HeapText(duplicate("")).get(), "");
}

TEST(Heap, ExactlyTheChosenRequestFails) {
  const ScopedAllocationFailure failure(2);
  EXPECT_NE(allocate_bytes(1), nullptr);
  EXPECT_NE(HeapText(duplicate("second")), nullptr);
  EXPECT_EQ(HeapText(duplicate("third")), nullptr);
  EXPECT_NE(allocate_bytes(1), nullptr);
}

TEST(Heap, BlockThatCanNotGrowStaysAsItWas) {
  HeapText text(duplicate("kept"));
  {
    const ScopedAllocationFailure failure(0);
    EXPECT_EQ(reallocate(text.get(), 4096), nullptr);
  }
  EXPECT_STREQ(text.get(), "kept");
  text.reset(static_cast<char*>(reallocate(text.release(), 4096)));
  EXPECT_STREQ(text.get(), "kept");
}

TEST(Heap, BlocksOfAnySizeGrow) {
  HeapText text(duplicate(""));
  std::string expected;
  while (expected.size() < 200) {
    expected += static_cast<char>('a' + expected.size() % 26);
    text.reset(static_cast<char*>(reallocate(text.release(), expected.size() + 1)));
    ASSERT_NE(text, nullptr);
    expected.copy(text.get(), expected.size());
    text.get()[expected.size()] = '\0';
    ASSERT_EQ(text.get(), expected);
  }
}

}  // namespace
}  // namespace zem::util
