#include "agent/event_filter.h"

#include <string>

#include "agent/agent_util.h"
#include "tests/support/table.h"
#include "util/heap.h"

namespace {

class Filters : public testing::Test {
 protected:
  ~Filters() override {
    zem_filters_clear();
    default_agent_info.is_filter_mode_in = false;
  }

  static int add(std::string spec, int cache = 0) { return zem_add_filter(spec.data(), cache); }

  /// "1 name|value name|value" for the send filters, the number being the result of adding.
  static std::string dump_after(const char* spec) {
    std::string text = std::to_string(add(spec));
    for (const auto* filter : zem::util::sl_items<const SL_List>(zem_event_filters)) {
      for (const auto* slot : zem::util::sl_items<const zem_filter_slot>(filter)) {
        text += std::string(" ") + slot->name + "|" + slot->value;
      }
    }
    return text;
  }
};

struct LineCase {
  const char* name;
  const char* spec;
  const char* dump;
};
class EventFilter : public Filters, public testing::WithParamInterface<LineCase> {};
TEST_P(EventFilter, ReadsFilterLines) { EXPECT_EQ(dump_after(GetParam().spec), GetParam().dump); }
INSTANTIATE_TEST_SUITE_P(
    Lines, EventFilter,
    testing::Values(LineCase{"TwoPairs", "Class=Foo;sev=WARNING;", "0 Class|Foo sev|WARNING"},
                    LineCase{"LastDelimiterMayBeMissing", "Class=Foo", "0 Class|Foo"},
                    LineCase{"BlanksAndQuotesStay", " Class = 'a b' ;", "0  Class | 'a b' "},
                    LineCase{"DelimitersInARowAreSkipped", "a=;b=c", "0 a|b=c"},
                    LineCase{"NameWithoutValue", "Class=Foo;sev", "-1"},
                    LineCase{"OnlyAName", "Class", "-1"}, LineCase{"Empty", "", "0"},
                    LineCase{"OnlyDelimiters", "===", "0"}),
    zem::test::kRowName);

struct EventCase {
  const char* name;
  const char* filter;
  std::string event;
  bool matches;
};
class FilterWalk : public Filters, public testing::WithParamInterface<EventCase> {};
TEST_P(FilterWalk, MatchHoldsBackUnlessFiltersSelect) {
  ASSERT_EQ(add("never=there"), 0);
  ASSERT_EQ(add(GetParam().filter), 0);
  const char* const event = GetParam().event.c_str();
  EXPECT_EQ(zem_filter_event(event, 0), GetParam().matches ? 1 : 0);
  default_agent_info.is_filter_mode_in = true;
  EXPECT_EQ(zem_filter_event(event, 0), GetParam().matches ? 0 : 1);
}
INSTANTIATE_TEST_SUITE_P(
    Events, FilterWalk,
    testing::Values(
        EventCase{"Class", "Class=A", "A;x=1;END\n\x01", true},
        EventCase{"ClassIsCaseSensitive", "Class=a", "A;x=1;END\n\x01", false},
        EventCase{"EveryPairMustHold", "Class=A;x=2", "A;x=1;END\n\x01", false},
        EventCase{"PairsInAnyOrder", "y=2;Class=A;x=1", "A;x=1;y=2;END\n\x01", true},
        EventCase{"MissingAttribute", "y=1", "A;x=1;END\n\x01", false},
        EventCase{"QuotesAreTheValues", "x='a b'", "A;x='a b';END\n\x01", true},
        EventCase{"UnquotedIsAnotherValue", "x=a b", "A;x='a b';END\n\x01", false},
        EventCase{"QuotedDelimitersStayInside", "y=1", "A;x='a;b=c';y=1;END\n\x01", true},
        EventCase{"QuoteInsideATokenIsPlain", "y=1", "A;x=it's;y=1;END\n\x01", true},
        EventCase{"DoubledQuotesStayInside", "y=1", "A;x='it'';s';y=1;END\n\x01", true},
        EventCase{"FirstOfANameDecides", "x=2", "A;x=1;x=2;END\n\x01", false},
        EventCase{"FirstClassIsTheTexts", "Class=B", "A;Class=B;END\n\x01", false},
        EventCase{"EmptyValueTakesItsDelimiter", "c=d", "A;a=;b=c;c=d;END\n\x01", false},
        EventCase{"EndOfAnUnterminatedTextIsAName", "END\n=1", "A;x=1;END\n", false},
        EventCase{"LastValueMayEndTheText", "x=1", "A;x=1", true},
        EventCase{"EmptyClass", "x=1", ";x=1;END\n\x01", true}),
    zem::test::kRowName);

TEST_F(Filters, TextsThatAreNoEventPass) {
  ASSERT_EQ(add("Class=A"), 0);
  default_agent_info.is_filter_mode_in = true;
  EXPECT_EQ(zem_filter_event("no semicolon", 0), 0);
  EXPECT_EQ(zem_filter_event("", 0), 0);
}

TEST_F(Filters, WithoutFiltersTheModeDecidesForEachListByItself) {
  EXPECT_EQ(zem_filter_event("A;END\n\x01", 0), 0);
  default_agent_info.is_filter_mode_in = true;
  EXPECT_EQ(zem_filter_event("", 0), 1);
  ASSERT_EQ(add("Class=A"), 0);
  EXPECT_EQ(zem_filter_event("A;END\n\x01", 0), 0);
  EXPECT_EQ(zem_filter_event("A;END\n\x01", 1), 1) << "no FilterCache: line: nothing is cached";
  ASSERT_EQ(add("Class=A", 1), 0);
  EXPECT_EQ(zem_filter_event("A;END\n\x01", 1), 0);
}

struct NormalCase {
  const char* name;
  std::string text;
  std::string copy;  ///< "" when none is needed
};
class EventTerminator : public testing::TestWithParam<NormalCase> {};
TEST_P(EventTerminator, ComparesLengthLessFiveBytes) {
  const std::string& text = GetParam().text;
  const zem::util::HeapText copy(zem_normalize_msg(text.c_str(), static_cast<int>(text.size())));
  EXPECT_STREQ(copy == nullptr ? "" : copy.get(), GetParam().copy.c_str());
}
INSTANTIATE_TEST_SUITE_P(
    Texts, EventTerminator,
    testing::Values(NormalCase{"Empty", "", ""}, NormalCase{"Short", "ab", "abEND\n\x01"},
                    NormalCase{"ShortWithEnd", "aEND", "aEND\n\x01"},
                    NormalCase{"FiveBytesCountAsTerminated", ";END\n", ""},
                    NormalCase{"SixBytesCompareOne", "aExxxx", ""},
                    NormalCase{"NineBytesCompareFour", "A;x=;END\n", "A;x=;END\n\x01"},
                    NormalCase{"NineBytesAreNotReadToTheLast", "A;x=END\nx", ""},
                    NormalCase{"Terminated", "Abc;x=1;END\n\x01", ""},
                    NormalCase{"EndAndNewline", "Abc;x=1;END\n", "Abc;x=1;END\n\x01"},
                    NormalCase{"EndOnly", "Abc;x=1;END", "Abc;x=1;END\n\x01"},
                    NormalCase{"TextBehindEndGoes", "Abc;x=1;ENDzz", "Abc;x=1;END\n\x01"},
                    NormalCase{"NoEnd", "Abc;END;x=1;y=2;", "Abc;END;x=1;y=2;END\n\x01"}),
    zem::test::kRowName);

using FiltersDeathTest = Filters;
TEST_F(FiltersDeathTest, MemoryExhaustionIsFatal) {
  ASSERT_EQ(add("Class=A"), 0);
  EXPECT_EXIT(
      {
        const zem::util::ScopedAllocationFailure failure(3);
        zem_filter_event("A;x=1;END\n\x01", 0);
      },
      testing::ExitedWithCode(1), "^memory allocation failure\n$");
}

}  // namespace
