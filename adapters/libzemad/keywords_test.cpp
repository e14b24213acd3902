#include "adapters/libzemad/keywords.h"

#include <gmock/gmock.h>

#include <string>

#include "adapters/libzemad/driver.h"
#include "tests/support/entry.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using zem::kernel::AttributeEntryPtr;
using zem::test::CurrentEvent;
using zem::test::Entry;
using zem::test::LogCapture;

class Keywords : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(zem::kernel::make_keyword_table()); }

  static std::string varbind_text() {
    return ZEMAD_AttributeEntryValueToString(ZEMAD_GetAttributeByKeyword(0)->Value);
  }
};

TEST_F(Keywords, VarbindTextListsTheAttributes) {
  const CurrentEvent event({{"severity", "WARNING", "k1"}, {"msg", "disk full", "k2"}},
                           Entry::none());
  EXPECT_EQ(ZEMAD_KeywordRow(0)->Value, nullptr);
  EXPECT_EQ(varbind_text(), "[(severity, k1, WARNING),(msg, k2, disk full)]");
}

TEST_F(Keywords, VarbindTextShowsNothingForAPartWithoutText) {
  const CurrentEvent event({{"n", -7, Entry::none()}, {"m", Entry::null(), 5}}, Entry::none());
  EXPECT_EQ(varbind_text(), "[(n, , -7),(m, 5, )]");
}

TEST_F(Keywords, VarbindTextOfNoAttributesIsTheOpeningBracket) {
  const CurrentEvent event({}, Entry::none());
  EXPECT_EQ(varbind_text(), "[");
}

/// 4095 bytes fit exactly: "[" and "(a, , " + value + ")," fill them, and the last comma gives way
/// to the bracket.
TEST_F(Keywords, VarbindTextLeavesOutWhatDoesNotFit) {
  const std::string exact(4095 - 1 - 8, 'v');
  const std::string too_long = exact + "v";
  {
    const CurrentEvent event({{"a", exact.c_str()}, {"b", "1"}}, Entry::none());
    EXPECT_EQ(varbind_text(), "[(a, , " + exact + ")]");
  }
  const CurrentEvent event({{"a", too_long.c_str()}, {"b", "1"}}, Entry::none());
  EXPECT_EQ(varbind_text(), "[(b, , 1)]");
}

TEST_F(Keywords, ValueOfTheEventStandsBeforeTheVarbindText) {
  const CurrentEvent event({{"a", "1"}}, "given");
  EXPECT_EQ(varbind_text(), "given");
}

TEST_F(Keywords, IndexAndRow) {
  LogCapture log(zem::log::kDriver);
  EXPECT_EQ(ZEMAD_GetKeywordIndex(""), 0);
  EXPECT_EQ(ZEMAD_GetKeywordIndex("N0"), -1);
  EXPECT_EQ(ZEMAD_GetKeywordIndex(nullptr), -1);
  EXPECT_EQ(ZEMAD_GetAttributeByKeyword(0)->Value, nullptr) << "no event is current";
  EXPECT_EQ(ZEMAD_GetAttributeByKeyword(-1), nullptr);
  EXPECT_EQ(ZEMAD_GetAttributeByKeyword(1), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre("Invalid keyword index", "", "Invalid keyword index", ""));
}

struct NameCase {
  const char* name;
  int mode;
  Entry text;
  const char* value;  ///< of the attribute that is found; null for none
};

class AttributeByName : public testing::TestWithParam<NameCase> {};

TEST_P(AttributeByName, FindsTheFirst) {
  ASSERT_TRUE(zem::kernel::make_keyword_table());
  const CurrentEvent event({{5, "number"}, {"severity", "first"}, {"severity", "second"}},
                           "keyword");
  const AttributeEntryPtr text = GetParam().text.make();
  const Attribute* found = ZEMAD_GetAttributeByName(GetParam().mode, text.get());
  if (GetParam().value == nullptr) {
    EXPECT_EQ(found, nullptr);
  } else {
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(ZEMAD_AttributeEntryValueToString(found->Value), GetParam().value);
  }
}

const NameCase kNameCases[] = {{"Equal", 1, "severity", "first"},
                               {"EqualIsWhole", 1, "sev", nullptr},
                               {"Begins", 2, "sev", "first"},
                               {"BeginsElsewhere", 2, "ity", nullptr},
                               {"Ends", 3, "ity", "first"},
                               {"EndsElsewhere", 3, "sev", nullptr},
                               {"LongerThanTheName", 3, "a severity", nullptr},
                               {"UnknownMode", 4, "severity", nullptr},
                               {"KeywordRowsComeLast", 1, "", "keyword"},
                               {"EmptyBeginningIsTheFirstAttribute", 2, "", "first"},
                               {"NumberIsNoName", 1, 5, nullptr},
                               {"NullEntry", 1, Entry::null(), nullptr},
                               {"NoEntry", 1, Entry::none(), nullptr}};
INSTANTIATE_TEST_SUITE_P(Names, AttributeByName, testing::ValuesIn(kNameCases),
                         zem::test::kRowName);

}  // namespace
