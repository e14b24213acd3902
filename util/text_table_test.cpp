#include "util/text_table.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace zem::util {
namespace {

TEST(TextTable, KnowsTextsByTheirBytes) {
  TextTable table;
  EXPECT_EQ(table.find("a"), TextTable::kNone);
  const std::string nul("a\0b", 3);
  std::uint32_t next = 0;
  for (const std::string& text : {std::string("a"), nul, std::string(), std::string(5000, 'x')}) {
    EXPECT_EQ(table.find(text), TextTable::kNone);
    for (const bool is_new : {true, false}) {
      const auto added = table.add(text);
      EXPECT_EQ(added.number, next);
      EXPECT_EQ(added.is_new, is_new);
    }
    EXPECT_EQ(table.text(next++), text);
  }
  EXPECT_EQ(table.take_texts(), "a" + nul + std::string(5000, 'x'));
  EXPECT_EQ(table.size(), 0U);
  EXPECT_EQ(table.find("a"), TextTable::kNone);
}

TEST(TextTable, GivesRandomTextsTheNumbersOfAMap) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  TextTable table;
  std::map<std::string, std::uint32_t> numbers;
  for (int i = 0; i < 50'000; ++i) {
    const std::string text = std::to_string(random() % 20'000) + std::string(random() % 3, '/');
    const auto known = numbers.find(text);
    ASSERT_EQ(table.find(text), known == numbers.end() ? TextTable::kNone : known->second);
    const auto expected = static_cast<std::uint32_t>(numbers.size());
    const auto added = table.add(text);
    ASSERT_EQ(added.is_new, known == numbers.end()) << "seed " << kSeed;
    ASSERT_EQ(added.number, numbers.try_emplace(text, expected).first->second);
  }
  for (const auto& [text, number] : numbers) ASSERT_EQ(table.text(number), text);
}

}  // namespace
}  // namespace zem::util
