#include "util/text.h"

#include <climits>

#include "tests/support/table.h"

namespace zem::util {
namespace {

struct NumberCase {
  const char* name;
  std::string_view text;
  int value;
};

class SaturatingAtoi : public testing::TestWithParam<NumberCase> {};

const NumberCase kNumberCases[] = {
    {"Plain", "120", 120},
    {"Nothing", "", 0},
    {"NoDigits", "YES", 0},
    {"OnlyASign", "-", 0},
    {"LeadingBlanks", " \t\v\f\r\n7", 7},
    {"WhatFollowsIsIgnored", "30s", 30},
    {"Minus", "-5", -5},
    {"TwoSignsAreNoNumber", "--5", 0},
    {"SignThenBlankIsNoNumber", "- 5", 0},
    {"LargestInt", "2147483647", INT_MAX},
    {"OneAboveSaturates", "2147483648", INT_MAX},
    {"SmallestInt", "-2147483648", INT_MIN},
    {"OneBelowSaturates", "-2147483649", INT_MIN},
    {"FarAboveSaturates", "99999999999999999999999999999999", INT_MAX},
    {"FarBelowSaturates", "-99999999999999999999999999999999", INT_MIN},
};

TEST_P(SaturatingAtoi, Value) { EXPECT_EQ(saturating_atoi(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(Texts, SaturatingAtoi, testing::ValuesIn(kNumberCases), test::kRowName);

TEST(FormatText, TakesWhateverLengthItNeeds) {
  EXPECT_EQ(format_text("%s", ""), "");
  EXPECT_EQ(format_text("%-4s|%03d|%c", "ab", 7, 'x'), "ab  |007|x");
  const std::string longer(100'000, 'y');
  EXPECT_EQ(format_text("<%s>", longer.c_str()), "<" + longer + ">");
}

}  // namespace
}  // namespace zem::util
