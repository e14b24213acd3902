#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/libzemad/map.h"
#include "tests/support/entry.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using zem::test::Entry;
using zem::test::EntryList;
using zem::test::LogCapture;
using zem::test::make_list;
using zem::util::HeapText;

HeapText map_printf(const char* format, const EntryList& values) {
  return HeapText(ZEMAD_EvalMapPrintf(format, SL_NbrElm(values.get()), values.get()));
}

struct PrintfCase {
  const char* name;
  const char* format;  ///< null for a plain line
  std::vector<Entry> values;
  const char* text;
  std::vector<std::string> complaints = {};
};

class MapPrintf : public testing::TestWithParam<PrintfCase> {};

TEST_P(MapPrintf, Formats) {
  LogCapture log;
  log.listen(zem::log::kMap, {zem::log::kMajor});
  const EntryList values(SL_Create());
  for (const Entry& value : GetParam().values) SL_InsLast(values.get(), value.make().release());
  const HeapText text = map_printf(GetParam().format, values);
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text.get(), GetParam().text);
  EXPECT_EQ(log.texts(), GetParam().complaints);
}

const char kTooMany[] = "Too much arguments in format";
const char kNotString[] = "Format not %s";
const char kNoText[] = "EvalMapPrintAttr failure";
const char kEnded[] = "Format ended in %";

const PrintfCase kPrintfCases[] = {
    {"Two", "%s-%s", {"a", "b"}, "a-b"},
    {"Plain", nullptr, {"a"}, "a"},
    {"PlainWithoutText", nullptr, {Entry::null()}, "", {kNoText}},
    {"Numbers", "%s,%s", {-7, Entry::unsigned_number(4000000000)}, "-7,4000000000"},
    {"Width", "%5s|", {"ab"}, "   ab|"},
    {"WidthLeft", "%-5s|", {"ab"}, "ab   |"},
    {"WidthZeros", "%05s|", {"ab"}, "000ab|"},
    {"WidthZerosLeft", "%-05s|", {"ab"}, "ab000|"},
    {"WidthTooSmall", "%1s|", {"ab"}, "ab|"},
    {"IgnoredFlags", "% #+s", {"ab"}, "ab"},
    {"Precision", "%.1s|", {"ab"}, "a|"},
    {"PrecisionWithoutDigits", "%.s|", {"ab"}, "|"},
    {"PrecisionNegative", "%.-1s|", {"ab"}, "1s|", {kNotString}},
    {"WidthAndPrecision", "%4.1s|", {"ab"}, "   a|"},
    {"PrecisionSaturates", "%.99999999999999999999s|", {"ab"}, "ab|"},
    {"OtherLetter", "%d items", {7}, "7 items", {kNotString}},
    {"PercentIsALetter", "%%s", {"a"}, "as", {kNotString}},
    {"NoConversion", "x", {"a"}, "a", {kTooMany, kNotString}},
    {"MoreValues", "%s", {"a", "b"}, "ab", {kTooMany, kNotString}},
    {"MoreConversions", "%s and %s", {"a"}, "a and %s"},
    {"TrailingPercent", "abc%", {"x", "y"}, "abcxy", {kEnded}},
    {"EndsInWidth", "%5", {"ab"}, "   ab", {kNotString}},
    {"EndsInPrecision", "<%-4.1", {"ab"}, "<a   ", {kNotString}},
    {"EmptyFormat", "", {"a"}, "a", {kTooMany, kNotString}},
    {"WithoutText", "[%s]", {Entry::null()}, "[s]", {kNoText}},
    {"MissingValue", "[%s]", {Entry::none(), "a"}, "[a]", {"Arguments failure"}}};
INSTANTIATE_TEST_SUITE_P(Table, MapPrintf, testing::ValuesIn(kPrintfCases), zem::test::kRowName);

TEST(MapPrintfBuffer, GrowsWithTheText) {
  const std::string longer(5000, 'v');
  const HeapText text = map_printf("<%s|%s>", make_list({longer.c_str(), longer.c_str()}));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text.get(), "<" + longer + "|" + longer + ">");
}

TEST(MapPrintfBuffer, HoldsSixteenMebibytesAndNoByteMore) {
  LogCapture log(zem::log::kMap);
  const EntryList value = make_list({"a"});
  const HeapText text = map_printf("%16777216s", value);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string_view(text.get()).size(), 16777216U);
  EXPECT_EQ(map_printf("%16777216s.", value), nullptr);
  EXPECT_EQ(map_printf("%99999999999s", value), nullptr);
  EXPECT_THAT(log.lines(),
              ElementsAre("LOW MAP 0 Realloc failure", "MAJOR MAP 98 Realloc failure",
                          "LOW MAP 0 Realloc failure", "MAJOR MAP 98 Realloc failure"));
}

TEST(MapPrintfBuffer, ReportsShortMemory) {
  LogCapture log;
  log.listen(zem::log::kMap, {zem::log::kMajor});
  const EntryList value = make_list({"a"});
  {
    const zem::util::ScopedAllocationFailure no_memory(0);
    EXPECT_EQ(map_printf("%s", value), nullptr);
  }
  const zem::util::ScopedAllocationFailure no_memory(1);
  EXPECT_EQ(map_printf("%600s", value), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre("Malloc failure", "Realloc failure"));
}

TEST(MapPrintfBuffer, WantsAListOfValues) {
  LogCapture log(zem::log::kMap);
  EXPECT_EQ(ZEMAD_EvalMapPrintf("x", 0, nullptr), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("LOW MAP 0 ZEMAD_EvalMapFormat: arguments NULL"));
}

}  // namespace
