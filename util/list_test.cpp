#include "util/list.h"

#include <algorithm>
#include <random>
#include <string>

#include "tests/support/table.h"

namespace {

using Letters = tvList<char*>;

std::string alphabet = "abcdefghijklmnopqrstuvwxyz";
char* letter(char c) { return &alphabet[static_cast<std::size_t>(c - 'a')]; }

void append(Letters& list, std::string_view text) {
  for (const char c : text) list(letter(c));
}
/// The elements as a walk by range-for meets them.
std::string dump(const Letters& list) {
  std::string text;
  for (const char* element : list) text += *element;
  return text;
}
/// The elements as a walk by the cursor meets them.
std::string walk(Letters& list) {
  std::string text;
  for (list[0]; list.has(); list++) text += *list();
  return text;
}
/// The element at the cursor, "-" when it is off the end or the list is empty.
std::string cursor_of(Letters& list) { return list.has() ? std::string(1, *list()) : "-"; }

TEST(TvList, AppendsAndWalks) {
  Letters list;
  EXPECT_EQ(walk(list), "");
  EXPECT_EQ(list(), nullptr);
  EXPECT_EQ(&list(letter('a')), &list.value) << "the first element lives in the list object";
  append(list, "bc");
  EXPECT_EQ(cursor_of(list), "c");
  EXPECT_EQ(walk(list), "abc");
  EXPECT_FALSE(list.has());
  EXPECT_EQ(list(), letter('a')) << "off the end, the first value is shown";
  list++;
  EXPECT_EQ(cursor_of(list), "-") << "there is no way back from the end but to rewind";
  EXPECT_EQ(list[2], letter('c'));
  EXPECT_EQ(cursor_of(list), "c");
}

TEST(TvList, CountingRunsTheCursorOffTheEnd) {
  Letters list;
  EXPECT_EQ(list.count(), 0);
  append(list, "abc");
  EXPECT_EQ(list.count(), 3);
  EXPECT_EQ(cursor_of(list), "-");
}

struct InsertCase {
  const char* name;
  const char* before;
  unsigned pos;
  const char* after;
  const char* cursor;
};
class TvListInsert : public testing::TestWithParam<InsertCase> {};

const InsertCase kInsertCases[] = {
    {"IntoAnEmptyList", "", 7, "x", "x"},
    {"AtTheFrontTheOldFirstMovesToTheNewNode", "ab", 0, "xab", "a"},
    {"BehindTheFirst", "ab", 1, "axb", "x"},
    {"BehindTheLast", "ab", 2, "abx", "x"},
    {"BeyondTheEndIsBehindTheLast", "ab", 100, "abx", "x"},
};
TEST_P(TvListInsert, PutsAndPoints) {
  Letters list;
  append(list, GetParam().before);
  EXPECT_EQ(list(letter('x'), GetParam().pos), letter('x'));
  EXPECT_EQ(cursor_of(list), GetParam().cursor);
  EXPECT_EQ(dump(list), GetParam().after);
  list(letter('z'));
  EXPECT_EQ(dump(list), GetParam().after + std::string("z")) << "the end is still known";
}
INSTANTIATE_TEST_SUITE_P(Positions, TvListInsert, testing::ValuesIn(kInsertCases),
                         zem::test::kRowName);

TEST(TvList, SearchesByIdentity) {
  Letters list;
  EXPECT_EQ(list[letter('b')], nullptr);
  append(list, "abc");
  EXPECT_EQ(list[letter('b')], letter('b'));
  EXPECT_EQ(cursor_of(list), "b");
  char same_letter = 'b';
  EXPECT_EQ(list[&same_letter], letter('a')) << "absent: the first element";
  EXPECT_EQ(cursor_of(list), "-");
}

TEST(TvList, CopiesAreListsOfTheirOwn) {
  Letters list;
  append(list, "abc");
  Letters copy(list);
  EXPECT_EQ(cursor_of(copy), "a");
  EXPECT_EQ(cursor_of(list), "-") << "the other list was walked by its cursor";
  copy.remove(letter('b'));
  EXPECT_EQ(dump(list), "abc");
  list = copy;
  EXPECT_EQ(dump(list), "ac");
  Letters& itself = list;
  list = itself;
  EXPECT_EQ(dump(list), "ac");
  list.clear();
  EXPECT_EQ(cursor_of(list), "-");
  append(list, "z");
  EXPECT_EQ(walk(list), "z");
  EXPECT_EQ(dump(copy), "ac");
}

TEST(TvList, LongListNeitherRecursesNorSearchesItsEnd) {
  Letters list;
  for (int i = 0; i < 1'000'000; ++i) list(letter('a'));
  EXPECT_EQ(list.count(), 1'000'000);
}

TEST(TvListDeathTest, RefusesWhatItCanNotStore) {
  Letters list;
  append(list, "ab");
  EXPECT_DEATH(list(static_cast<char*>(nullptr)), "null is not stored");
  EXPECT_DEATH(list[2], "an index is inside its tvList");
}

/// One random step on both; the text shows what was done.
std::string step(Letters& list, std::string& model, std::minstd_rand& random) {
  const char c = static_cast<char>('a' + random() % 8);
  const auto pos = static_cast<unsigned>(random() % 12);
  const std::size_t found = model.find(c);
  switch (random() % 5) {
    case 0:
      list(letter(c));
      model += c;
      return std::string("append ") + c;
    case 1:
      list(letter(c), pos);
      model.insert(std::min<std::size_t>(pos, model.size()), 1, c);
      return std::string("insert ") + c + " at " + std::to_string(pos);
    case 2: {
      char* before = letter(c);
      char* after = letter('a');
      EXPECT_EQ(list(before, after), found == model.npos ? before : after);
      if (found != std::string::npos) model[found] = 'a';
      return std::string("replace ") + c;
    }
    default:
      EXPECT_EQ(list.remove(letter(c)), found == model.npos ? nullptr : letter(c));
      if (found != std::string::npos) model.erase(found, 1);
      return std::string("remove ") + c;
  }
}

TEST(TvList, BehavesAsAPlainSequenceUnderRandomSteps) {
  constexpr unsigned kSeed = 20261;
  std::minstd_rand random(kSeed);
  Letters list;
  std::string model;
  for (int i = 0; i < 20'000; ++i) {
    const std::string done = step(list, model, random);
    ASSERT_EQ(dump(list), model) << "seed " << kSeed << ", step " << i << ": " << done;
    ASSERT_EQ(walk(list), model) << "seed " << kSeed << ", step " << i << ": " << done;
  }
}

}  // namespace
