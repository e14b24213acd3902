#include "util/slist.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using zem::util::ScopedAllocationFailure;

/// Elements of these tests are single characters; `text` shows a list as one string.
std::string letters = "abcdefghijklmnopqrstuvwxyz";
std::string released;
std::string seen;

int match_letter(const void* element, const void* key) {
  return *static_cast<const char*>(element) == *static_cast<const char*>(key) ? 1 : 0;
}
int match_with_two(const void* element, const void* key) { return 2 * match_letter(element, key); }
void note_release(char* element) { released += *element; }

using List = zem::util::SlListOf<note_release>;

List list_of(std::size_t count) {
  List list(SL_Create());
  for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(SL_InsLast(list.get(), &letters[i]), 1);
  return list;
}

std::string text_of(const SL_List* list) {
  std::string text;
  for (const char* element : zem::util::sl_items<char>(list)) text += *element;
  return text;
}

class SlList : public testing::Test {
 protected:
  SlList() {
    released.clear();
    seen.clear();
  }
};

TEST_F(SlList, GrowsByFiveAndKeepsTheOrder) {
  struct {
    std::size_t count;
    int capacity;
  } const cases[] = {{0, 0}, {1, 5}, {5, 5}, {6, 10}, {10, 10}, {11, 15}};
  for (const auto& [count, capacity] : cases) {
    const List list = list_of(count);
    EXPECT_EQ(list->capacity, capacity) << count;
    EXPECT_EQ(SL_NbrElm(list.get()), static_cast<int>(count));
    EXPECT_EQ(text_of(list.get()), letters.substr(0, count));
  }
}

/// A request for memory beyond the first hundred would fail: twice as many elements are one more.
TEST_F(SlList, LongListsGrowInFewSteps) {
  constexpr int kCount = 200'000;
  const List list(SL_Create());
  const ScopedAllocationFailure no_more(100);
  char element = 'x';
  for (int i = 0; i < kCount; ++i) ASSERT_EQ(SL_InsLast(list.get(), &element), 1) << i;
  EXPECT_EQ(list->capacity, kCount);
  EXPECT_EQ(SL_GetPos(list.get(), kCount - 1), &element);
}

TEST_F(SlList, ReservedListTakesMoreAllTheSame) {
  for (const int reserved : {1, 50}) {
    const List list(SL_Create());
    ASSERT_TRUE(zem::util::sl_reserve(*list, reserved));
    EXPECT_EQ(list->capacity, reserved);
    for (int i = 0; i < 20 * reserved; ++i) ASSERT_EQ(SL_InsLast(list.get(), &letters[i % 2]), 1);
    EXPECT_EQ(list->count, 20 * reserved);
    EXPECT_EQ(SL_GetPos(list.get(), 20 * reserved - 1), &letters[1]);
  }
}

TEST_F(SlList, NullListIsAnEmptyList) {
  EXPECT_EQ(SL_NbrElm(nullptr), 0);
  EXPECT_EQ(SL_InsLast(nullptr, &letters[0]), 0);
  EXPECT_EQ(SL_Find(nullptr, &letters[0], match_letter), nullptr);
  EXPECT_EQ(SL_FindPos(nullptr, &letters[0], match_letter), -1);
  EXPECT_EQ(SL_FindReplace(nullptr, &letters[0], match_letter, nullptr), 0);
  EXPECT_EQ(SL_GetPos(nullptr, 0), nullptr);
  EXPECT_EQ(SL_Walk2(
                nullptr, [](void*, void*) { return 0; }, nullptr),
            0);
  SL_DelAll(nullptr, zem::util::sl_free<note_release>);
  EXPECT_EQ(text_of(nullptr), "");
}

TEST_F(SlList, OnlyOneIsAHit) {
  const List list = list_of(3);
  char key = 'b';
  EXPECT_EQ(SL_Find(list.get(), &key, match_letter), &letters[1]);
  EXPECT_EQ(SL_FindPos(list.get(), &key, match_letter), 1);
  EXPECT_EQ(SL_Find(list.get(), &key, match_with_two), nullptr);
  EXPECT_EQ(SL_FindPos(list.get(), &key, match_with_two), -1);
  EXPECT_EQ(SL_Find(list.get(), &key, nullptr), nullptr);
  key = 'z';
  EXPECT_EQ(SL_FindPos(list.get(), &key, match_letter), -1);
}

TEST_F(SlList, PositionsOutsideTheListAreNull) {
  const List list = list_of(3);
  EXPECT_EQ(SL_GetPos(list.get(), 2), &letters[2]);
  EXPECT_EQ(SL_GetPos(list.get(), 3), nullptr) << "a slot that is allocated but not used";
  EXPECT_EQ(SL_GetPos(list.get(), -1), nullptr);
}

TEST_F(SlList, ReplacesTheFirstMatchInPlaceAndReleasesIt) {
  std::array<char, 3> elements = {'x', 'y', 'y'};
  const List list(SL_Create());
  for (char& element : elements) SL_InsLast(list.get(), &element);
  char replacement = 'y';
  EXPECT_EQ(
      SL_FindReplace(list.get(), &replacement, match_letter, zem::util::sl_free<note_release>), 1);
  EXPECT_EQ(released, "y");
  EXPECT_EQ(SL_GetPos(list.get(), 1), &replacement);
  EXPECT_EQ(SL_GetPos(list.get(), 2), &elements[2]);
  EXPECT_EQ(SL_FindReplace(list.get(), &letters[0], match_letter, zem::util::sl_free<note_release>),
            0);
  EXPECT_EQ(released, "y");
}

TEST_F(SlList, DeletesItsElementsInOrder) {
  list_of(7).reset();
  EXPECT_EQ(released, "abcdefg");
  SL_DelAll(list_of(2).release(), nullptr);
  EXPECT_EQ(released, "abcdefg") << "no release function: the elements stay their owner's";
}

int answer_at_b = 1;
int see(void* element) {
  const char letter = *static_cast<const char*>(element);
  seen += letter;
  return letter == 'b' ? answer_at_b : 7;
}
int see_position(void* element, int position) {
  seen += std::to_string(position);
  return see(element);
}
int see_arg(void* element, void* arg) {
  seen += *static_cast<const char*>(arg);
  return see(element);
}
int see_va(void* element, va_list args) {
  seen += std::to_string(va_arg(args, int));
  seen += va_arg(args, const char*);
  return see(element);
}

TEST_F(SlList, WalksShareOneProtocol) {
  struct {
    int answer;
    int result;
    std::size_t visited;
  } const cases[] = {{0, 1, 2}, {-1, 0, 2}, {1, 0, 3}, {-2, 0, 3}};
  const List list = list_of(3);
  char arg = '-';
  for (const auto& [answer, result, visited] : cases) {
    answer_at_b = answer;
    seen.clear();
    EXPECT_EQ(SL_Walk(list.get(), see_position), result);
    EXPECT_EQ(seen, std::string("1a2b3c").substr(0, 2 * visited));
    seen.clear();
    EXPECT_EQ(SL_Walk2(list.get(), see_arg, &arg), result);
    EXPECT_EQ(seen, std::string("-a-b-c").substr(0, 2 * visited));
    seen.clear();
    EXPECT_EQ(SL_WalkVa(list.get(), see_va, 4, "."), result);
    EXPECT_EQ(seen, std::string("4.a4.b4.c").substr(0, 3 * visited));
  }
  EXPECT_EQ(SL_Walk(list.get(), nullptr), 0);
  EXPECT_EQ(SL_Walk2(list.get(), nullptr, &arg), 0);
  EXPECT_EQ(SL_WalkVa(list.get(), nullptr), 0);
}

TEST_F(SlList, ShortMemoryLeavesTheListUsable) {
  {
    const ScopedAllocationFailure failure(0);
    EXPECT_EQ(SL_Create(), nullptr);
  }
  const List list = list_of(5);
  const ScopedAllocationFailure failure(0);
  EXPECT_EQ(SL_InsLast(list.get(), &letters[5]), 0);
  EXPECT_EQ(text_of(list.get()), "abcde");
  EXPECT_EQ(SL_InsLast(list.get(), &letters[5]), 1);
  EXPECT_EQ(text_of(list.get()), "abcdef");
}

}  // namespace
