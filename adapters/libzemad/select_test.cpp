#include "adapters/libzemad/select.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/libzemad/kernel.h"
#include "tests/support/entry.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zem::kernel::AttributeEntryPtr;
using zem::test::Entry;
using zem::test::LogCapture;

constexpr int kUnsupported = -15;  ///< 0, and a message that the operation is not supported
constexpr int kNoValue = -82;      ///< 0, and a message that there is no value

struct OperatorCase {
  const char* name;
  int operator_code;
  Entry entry;
  Entry operand;
  int on_key;
  int on_value;
};

class SelectOperators : public testing::TestWithParam<OperatorCase> {
 protected:
  using Test = int (*)(int, const AttributeEntry*, const AttributeEntry*);

  static void check(Test test, int expected, const std::string& door, const std::string& what) {
    LogCapture log(zem::log::kSelect);
    const AttributeEntryPtr entry = GetParam().entry.make();
    const AttributeEntryPtr operand = GetParam().operand.make();
    EXPECT_EQ(test(GetParam().operator_code, entry.get(), operand.get()), expected == 1 ? 1 : 0);
    if (expected == kUnsupported) {
      const std::string text = "Operation on " + what + " not supported.";
      EXPECT_THAT(log.lines(), ElementsAre("LOW SELECT 0 " + text, "MAJOR SELECT 15 " + text));
    } else if (expected == kNoValue) {
      const std::string text = door + " Value failure";
      EXPECT_THAT(log.lines(), ElementsAre("LOW SELECT 0 " + text, "MAJOR SELECT 82 " + text));
    } else {
      EXPECT_THAT(log.lines(), IsEmpty());
    }
  }
};

TEST_P(SelectOperators, OnKeyAndValue) {
  check(ZEMAD_TestSelectKey, GetParam().on_key, "ZEMAD_TestSelectKey", "key");
  check(ZEMAD_TestSelectValue, GetParam().on_value, "ZEMAD_TestSelectValue", "value");
}

const Entry kBig = Entry::unsigned_number(0xFFFFFFFF);
const Entry kOne = Entry::unsigned_number(1);
const Entry kHollowText = Entry::without_value(ZEMAD_TYPE_STRING);
const Entry kHollowNumber = Entry::without_value(ZEMAD_TYPE_INT);

const OperatorCase kOperatorCases[] = {
    {"EqualTexts", 1, "abc", "abc", 1, 1},
    {"EqualOtherText", 1, "abc", "abd", 0, 0},
    {"EqualIsWhole", 1, "abc", "ab", 0, 0},
    {"EqualNumbers", 1, -5, -5, 1, 1},
    {"EqualOtherNumber", 1, 5, 6, 0, 0},
    {"EqualNulls", 1, Entry::null(), Entry::null(), 1, 1},
    {"TypesMustAgree", 1, "5", 5, 0, 0},
    {"SignedAndUnsignedDiffer", 1, 1, kOne, 0, 0},
    {"EqualWithoutValues", 1, kHollowText, kHollowText, kNoValue, kNoValue},
    {"EqualLengthsFirst", 1, "a", kHollowText, 0, 0},

    {"Prefix", 2, "abcdef", "abc", 1, 1},
    {"PrefixWhole", 2, "abc", "abc", 1, 1},
    {"PrefixLongerThanTheText", 2, "ab", "abc", 0, 0},
    {"PrefixElsewhere", 2, "xabc", "abc", 0, 0},
    {"PrefixOfNumbersPasses", 2, 1, 2, 1, 1},
    {"PrefixWithoutValue", 2, "abc", kHollowText, kNoValue, kNoValue},

    {"Suffix", 3, "abcdef", "def", 1, 1},
    {"SuffixElsewhere", 3, "abcdef", "cde", 0, 0},
    {"SuffixLongerThanTheText", 3, "ef", "def", 0, 0},
    {"SuffixEmpty", 3, "abc", "", 1, 1},
    {"SuffixOfNullsPasses", 3, Entry::null(), Entry::null(), 1, 1},

    {"NotEqual", 4, 5, 6, kUnsupported, 1},
    {"NotEqualSame", 4, 5, 5, kUnsupported, 0},
    {"Greater", 5, 6, 5, kUnsupported, 1},
    {"GreaterSame", 5, 5, 5, kUnsupported, 0},
    {"GreaterIsSigned", 5, -1, 1, kUnsupported, 0},
    {"GreaterUnsigned", 5, kBig, kOne, kUnsupported, 1},
    {"GreaterTextsPass", 5, "a", "5", kUnsupported, 1},
    {"GreaterNullsPass", 5, Entry::null(), Entry::null(), kUnsupported, 1},
    {"GreaterWithoutValue", 5, kHollowNumber, 5, kUnsupported, kNoValue},
    {"GreaterOtherTypeFailsSilently", 5, "5", 5, 0, 0},
    {"GreaterEqualSame", 6, 5, 5, kUnsupported, 1},
    {"GreaterEqualLess", 6, 4, 5, kUnsupported, 0},
    {"Less", 7, -1, 1, kUnsupported, 1},
    {"LessUnsigned", 7, kBig, kOne, kUnsupported, 0},
    {"LessEqualSame", 8, 5, 5, kUnsupported, 1},
    {"LessEqualGreater", 8, 6, 5, kUnsupported, 0},

    {"Exists", 9, "k", "x", 1, kUnsupported},
    {"ExistsEmpty", 9, "", "x", 0, kUnsupported},
    {"ExistsNull", 9, Entry::null(), Entry::null(), 0, kUnsupported},
    {"ExistsOfAnotherType", 9, 5, "x", 0, 0},
    {"ExistsLooksAtTheFirstByte", 9, 256, 1, 0, kUnsupported},
    {"ExistsWithoutValue", 9, kHollowText, "x", kNoValue, kUnsupported},

    {"Contains", 10, "an error", "err", kUnsupported, 1},
    {"ContainsNot", 10, "an error", "Err", kUnsupported, 0},
    {"ContainsLonger", 10, "er", "err", kUnsupported, 0},
    {"ContainsWhole", 10, "err", "err", kUnsupported, 1},
    {"ContainsNumbersPass", 10, 1, 2, kUnsupported, 1},
    {"UnknownOperator", 11, "a", "a", kUnsupported, kUnsupported}};
INSTANTIATE_TEST_SUITE_P(Table, SelectOperators, testing::ValuesIn(kOperatorCases),
                         zem::test::kRowName);

TEST(SelectTests, MissingEntriesFailWithAMessage) {
  const AttributeEntryPtr entry = Entry("a").make();
  LogCapture log(zem::log::kSelect);
  EXPECT_EQ(ZEMAD_TestSelectKey(1, nullptr, entry.get()), 0);
  EXPECT_EQ(ZEMAD_TestSelectValue(1, entry.get(), nullptr), 0);
  EXPECT_THAT(log.lines(), ElementsAre("LOW SELECT 0 ZEMAD_TestSelectKey failure",
                                       "MAJOR SELECT 82 ZEMAD_TestSelectKey failure",
                                       "LOW SELECT 0 ZEMAD_TestSelectValue failure",
                                       "MAJOR SELECT 82 ZEMAD_TestSelectValue failure"));
}

TEST(SelectTests, ItemWithoutAttrTestFails) {
  Select item{nullptr, nullptr, nullptr};
  const zem::util::SlListOf<ZEMAD_FreeNo> items(SL_Create());
  SL_InsLast(items.get(), &item);
  LogCapture log(zem::log::kSelect);
  EXPECT_EQ(ZEMAD_EvalSelect(items.get()), 0);
  EXPECT_THAT(log.lines(), ElementsAre("LOW SELECT 0 Select->Attribute NULL failure",
                                       "MAJOR SELECT 50 Select->Attribute NULL failure"));
  ZEMAD_KernelSelectCleanup();
  log.clear();
  log.listen(zem::log::kSelect, {zem::log::kNormal});
  ZEMAD_EvalSelect(items.get());
  EXPECT_EQ(log.texts().back(), "Finished ZEMAD_EvalSelect, returning FALSE");
  ZEMAD_KernelSelectCleanup();
}

TEST(SelectTests, RefusedOperationsTraceTheirEnd) {
  const AttributeEntryPtr entry = Entry("a").make();
  LogCapture log;
  log.listen(zem::log::kSelect, {zem::log::kNormal});
  ZEMAD_TestSelectKey(5, entry.get(), entry.get());
  EXPECT_THAT(log.texts(), ElementsAre("Finished ZEMAD_TestSelectKey"));
  ZEMAD_TestSelectValue(9, entry.get(), entry.get());
  EXPECT_EQ(log.texts().back(), "Finished ZEMAD_TestSelectValue");
}

/// The first word of "ab" is its three bytes and no fourth.
TEST(SelectValueTrace, ShowsTypesLengthsWordsAndTexts) {
  const AttributeEntryPtr entry = Entry("ab").make();
  const AttributeEntryPtr operand = Entry("abcd").make();
  const AttributeEntryPtr number = Entry(-2).make();
  LogCapture log;
  log.listen(zem::log::kSelect, {zem::log::kNormal});
  ZEMAD_TestSelectValue(1, entry.get(), operand.get());
  ZEMAD_TestSelectValue(1, number.get(), number.get());
  const std::vector<std::string> texts = log.texts();
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(texts[0], "Enter ZEMAD_TestSelectValue 1 1 3 5 25185 1684234849 ab12.12 abcd12.12");
  EXPECT_THAT(texts[1], testing::StartsWith("Enter ZEMAD_TestSelectValue 2 2 4 4 -2 -2 "));
}

}  // namespace
