#include "adapters/logfile/common/format_reader.h"

#include <string>
#include <string_view>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/format_report.h"
#include "tests/support/format_set.h"
#include "tests/support/report_capture.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace zem::test {
namespace {

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

/// An entry `p`, then `a` with a format line of two variables, up to its slot lines; five lines.
std::string in_slots(std::string_view slots) { return "FORMAT a\n%s %s\n" + std::string(slots); }

struct RefusedCase {
  const char* name;
  std::string text;
  std::string reports;
  std::string entries;
};

class RefusedFormatFile : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedFormatFile, ReportsAndFails) {
  const ReportCapture reports;
  const FormatSet set(GetParam().text);
  EXPECT_EQ(reports.text(), GetParam().reports);
  EXPECT_EQ(set.result(), 1);
  EXPECT_EQ(set.names(), GetParam().entries);
}

const RefusedCase kRefusedCases[] = {
    {"WordBetweenEntries", "x\nFORMAT a\nx\nEND\n", "E0 around x: syntax error\n", ""},
    {"CommentWithoutItsBlank", "\n/*note*/\n", "E1 around /*note*/: syntax error\n", ""},
    {"NameMissing", "FORMAT\nx\nEND\n", "E1 around \n: syntax error\n", ""},
    {"KeywordForAName", "FORMAT FOLLOWS\n", "E0 around FOLLOWS: syntax error\n", ""},
    {"SeparatorForAName", "FORMAT \"a\"\n", "E0 around \": syntax error\n", ""},
    {"FileEndsBehindTheName", "FORMAT a", "E0 around : syntax error\n", "a"},
    {"WordBehindTheName", "FORMAT a b\nx\nEND\n", "E0 around b: syntax error\n", "a"},
    {"ParentNameMissing", "FORMAT a FOLLOWS\n", "E1 around \n: syntax error\n", ""},
    {"TwoParents", "FORMAT p\nx\nEND\nFORMAT a FOLLOWS p, q\n", "E3 around ,: syntax error\n",
     "p a"},
    {"ParentNotYetDefined", "FORMAT a FOLLOWS b\nx\nEND\nFORMAT b\nx\nEND\n",
     "E0 around b: b is not defined\n", "a b"},
    {"OwnParent", "FORMAT a FOLLOWS a\nx\nEND\n", "E0 around a: a is not defined\n", "a"},
    {"EmptyFormatLine", "FORMAT a\n\nEND\n", "E2 around \n: syntax error\n", "a"},
    {"FileEndsOnTheFormatLine", "FORMAT p\n%s %s\nx $2\nEND\nFORMAT a FOLLOWS p\n%s",
     "W in a dropping inherited map `x $2'\nE5 around : syntax error\n", "p a"},
    {"TooManyVariables", "FORMAT a\n" + repeated("%s", 66) + "\nEND\n",
     "E1 too many % variables in format\nE1 too many % variables in format\n", "a"},
    {"BlankLineBetweenSlots", in_slots("s 1\n\nEND\n"), "E4 around \n: syntax error\n", "a"},
    {"SlotWithoutValue", in_slots("s\nEND\n"), "E3 around \n: syntax error\n", "a"},
    {"SlotWithTwoValues", in_slots("s x y\nEND\n"), "E2 around y: syntax error\n", "a"},
    {"SlotNamedByAKeyword", in_slots("DEFAULT x\nEND\n"), "E2 around DEFAULT: syntax error\n", "a"},
    {"EndAsAValue", in_slots("s END\nEND\n"), "E2 around END: syntax error\n", "a"},
    {"SeparatorAsAValue", in_slots("s %s\nEND\n"), "E2 around %: syntax error\n", "a"},
    {"QuoteWithoutEnd", in_slots("s \"x\nEND\n"), "E2 around \": syntax error\n", "a"},
    {"CommentSwallowsTheSlotLinesEnd", in_slots("s x // note\nEND\n"),
     "E3 around END: syntax error\n", "a"},
    {"VariableOutOfRange", in_slots("s $0\nt $3\nu $\nv $99999999999\nEND\n"),
     "E3 $0 must be between 1 and 2\nE4 $3 must be between 1 and 2\n"
     "E5 $0 must be between 1 and 2\nE6 $2147483647 must be between 1 and 2\n",
     "a"},
    {"PrintfWithoutQuotes", in_slots("s PRINTF(x)\nEND\n"), "E2 around x: syntax error\n", "a"},
    {"PrintfOfAQuotedText", in_slots("s PRINTF(\"%s\", \"x\")\nEND\n"),
     "E2 around \"x\": syntax error\n", "a"},
    {"PrintfNeverClosed", in_slots("s PRINTF(\"%s\", x\nEND\n"), "E3 around \n: syntax error\n",
     "a"},
    {"NoNewlineBehindEnd", in_slots("END"), "E2 around : syntax error\n", "a"},
    {"WordBehindEnd", in_slots("END x\n"), "E2 around x: syntax error\n", "a"},
    {"NameTooLong", "FORMAT " + repeated("n", 256) + "\nx\nEND\n",
     "E0 around " + repeated("n", 256) + ": token too long " + repeated("n", 100) + "\n", "???"},
    {"ParentNameTooLong", "FORMAT a FOLLOWS " + repeated("n", 256) + "\nx\nEND\n",
     "E0 around " + repeated("n", 256) + ": token too long " + repeated("n", 100) + "\n" +
         "E0 around " + repeated("n", 256) + ": ??? is not defined\n",
     "a"},
    {"UnknownParentIsCutInTheMessage", "FORMAT a FOLLOWS " + repeated("n", 255) + "\nx\nEND\n",
     "E0 around " + repeated("n", 255) + ": " + repeated("n", 100) + " is not defined\n", "a"},
};

INSTANTIATE_TEST_SUITE_P(Table, RefusedFormatFile, testing::ValuesIn(kRefusedCases), kRowName);

struct AcceptedCase {
  const char* name;
  std::string text;
  std::string normalised;
};

class AcceptedFormatFile : public testing::TestWithParam<AcceptedCase> {};

TEST_P(AcceptedFormatFile, ReadsWithoutAWord) {
  const ReportCapture reports;
  FormatSet set(GetParam().text);
  EXPECT_EQ(reports.text(), "");
  EXPECT_EQ(set.result(), 0);
  EXPECT_EQ(set.fmt_text(), GetParam().normalised);
}

const AcceptedCase kAcceptedCases[] = {
    {"EmptyFile", "", ""},
    {"OnlyCommentsAndBlankLines", "\n // x\n /* y\n\n */\n\n", ""},
    {"EntryWithoutSlots", "FORMAT a\nx\nEND\n", "FORMAT a\nx\nEND\n\n"},
    {"NamesThatAreKeywordsElsewhere",
     "FORMAT FORMAT\nEND\nFORMAT FOLLOWS\nEND\nFORMAT END FOLLOWS FORMAT\nFOLLOWS\nEND\n",
     "FORMAT FORMAT\nEND\nFORMAT \"FOLLOWS\"\nEND\n\nFORMAT END FOLLOWS FORMAT\nFOLLOWS\nEND\n\n"},
    {"LongestName", "FORMAT " + repeated("n", 255) + "\nx\nEND\n",
     "FORMAT " + repeated("n", 255) + "\nx\nEND\n\n"},
    {"LongestFormatOfVariables", "FORMAT a\n" + repeated("%s", 64) + "\nEND\n",
     "FORMAT a\n" + repeated("%s", 64) + "\nEND\n\n"},
    {"FormatLineGoesOnBehindAComment", "FORMAT a\nx // note\ny\nEND\n", "FORMAT a\nx y\nEND\n\n"},
    {"CommentsBetweenSlots", in_slots("s $1\n// x\n/* y */ t $2\nEND\n"),
     "FORMAT a\n%s %s\ns $1\nt $2\nEND\n\n"},
    {"SlotsOfEveryKind",
     in_slots("s $02\nt word\nu \"a \\\"b\\\"\"\nv DEFAULT\nw PRINTF ( \"%s\\n\" , s,t )\n-x "
              "$1a\nEND\n"),
     "FORMAT a\n%s %s\ns $2\nt \"word\"\nu \"a \\\"b\\\"\"\nv DEFAULT\nw PRINTF(\"%s\\n\", s, t)\n"
     "-x \"$1a\"\nEND\n\n"},
    {"LaterSlotTakesThePlace", in_slots("s $1\nt $2\ns x\nEND\n"),
     "FORMAT a\n%s %s\ns \"x\"\nt $2\nEND\n\n"},
    {"NulEndsAToken", std::string("FORMAT a\0b\nx\0y z\nEND\n", 21), "FORMAT a\nx z\nEND\n\n"},
};

INSTANTIATE_TEST_SUITE_P(Table, AcceptedFormatFile, testing::ValuesIn(kAcceptedCases), kRowName);

TEST(ReadFmt, SaysThatAFileCannotBeOpened) {
  const ReportCapture reports;
  LogDriver set;
  status = 0;
  EXPECT_EQ(ReadFmt("/nowhere/formats", &set), 1);
  EXPECT_EQ(reports.text(), "E cannot open /nowhere/formats\n");
  EXPECT_EQ(status, 0);
}

TEST(ReadFmt, EndsTheProcessWhenAnOpenFileCannotBeRead) {
  LogDriver set;
  EXPECT_EXIT(ReadFmt("/", &set), testing::ExitedWithCode(1), "^/: format scanner: read failed\n$");
}

TEST(ReadFmt, FailureStaysUntilStatusIsCleared) {
  const ReportCapture reports;
  const TempDir dir;
  const std::string good = dir.write("good", "FORMAT a\nx\nEND\n");
  const std::string bad = dir.write("bad", "FORMAT b c\nrest\n");
  LogDriver set;
  status = 0;
  EXPECT_EQ(ReadFmt(bad.c_str(), &set), 1);
  EXPECT_EQ(ReadFmt(good.c_str(), &set), 1);
  EXPECT_EQ(reports.text(), "E0 around c: syntax error\nE1 around \n: syntax error\n");
  EXPECT_EQ(set.getFormatSpec("a"), nullptr);
  status = 0;
  EXPECT_EQ(ReadFmt(good.c_str(), &set), 0);
  EXPECT_NE(set.getFormatSpec("a"), nullptr);
}

TEST(ReadFmt, KnowsTheTruePlaceOfASyntaxError) {
  const ReportCapture reports;
  const FormatSet set(in_slots("s \"x\n\n\"\nt x y\nEND\n"));
  EXPECT_EQ(reports.text(), "E3 around y: syntax error\n");
  EXPECT_EQ(format::current_place().line, 6U);
  EXPECT_EQ(format::current_place().column, 5U);
}

TEST(ReadFmt, ReadsEntriesBeyondAnyStackAndBuffer) {
  const FormatSet set(
      in_slots(repeated("s PRINTF(\"\"" + repeated(",s", 1000) + ")\n", 20) + "END\n") +
      repeated("FORMAT b FOLLOWS a\n" + repeated("x ", 10'000) + "\nEND\n", 3));
  EXPECT_EQ(set.result(), 0);
  EXPECT_EQ(set.names(), "a b b b");
}

TEST(IsVar, DollarAndDigitsOnly) {
  for (const char* variable : {"$", "$1", "$0123456789"}) EXPECT_TRUE(isVar(variable)) << variable;
  for (const char* word : {"", "1", "$1a", "$-1", "$$", "x$1"}) EXPECT_FALSE(isVar(word)) << word;
}

}  // namespace
}  // namespace zem::test
