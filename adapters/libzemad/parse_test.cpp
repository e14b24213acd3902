#include "adapters/libzemad/parse.h"

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

#include "adapters/libzemad/class_writer.h"
#include "adapters/libzemad/parse_config.h"
#include "tests/support/class_text.h"
#include "tests/support/table.h"
#include "util/heap.h"

namespace zem::kernel {
namespace {

using test::parse_classes;
using test::ParsedClasses;
using testing::ElementsAre;
using testing::IsEmpty;

std::string repeated(int count, std::string_view text) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

/// FETCH with IPNAME around IPNAME, `depth` times.
std::string nested(int depth) {
  return "CLASS A FETCH 1: " + repeated(depth, "IPNAME(") + "1" + repeated(depth, ")") + ";END\n";
}

// Accepted ----------------------------------------------------------------------------------------

struct AcceptedCase {
  const char* name;
  std::string text;
  std::string written;  ///< the compiled classes as text
};

class AcceptedClasses : public testing::TestWithParam<AcceptedCase> {};

/// What was compiled is written back, and compiles to the same.
TEST_P(AcceptedClasses, RoundTrip) {
  const ParsedClasses first = parse_classes(GetParam().text);
  EXPECT_EQ(first.result, 0);
  EXPECT_THAT(first.messages, IsEmpty());
  EXPECT_EQ(first.text, GetParam().written);
  const ParsedClasses second = parse_classes(first.text);
  EXPECT_EQ(second.text, first.text);
  EXPECT_EQ(second.constants, first.constants);
}

/// A class whose SELECT items are `ATTR(=,"a")` and each of these tests, as it is written.
std::string with_tests(const std::vector<std::string>& tests) {
  std::string text = "CLASS \"A\"\n  SELECT\n";
  for (std::size_t i = 0; i < tests.size(); ++i) {
    text += "    " + std::to_string(i + 1) + ": ATTR(=,\"a\"), " + tests[i] + ";\n";
  }
  return text + "END\n";
}

const std::string kEveryTest = with_tests(
    {"KEY(=,\"a\")", "KEY(PREFIX,\"a\")", "KEY(SUFFIX,\"a\")", "KEY(!=,\"a\")", "KEY(>,\"a\")",
     "KEY(>=,\"a\")", "KEY(<,\"a\")", "KEY(<=,\"a\")", "KEY(EXISTS,\"a\")", "VALUE(=,1)",
     "VALUE(PREFIX,1)", "VALUE(SUFFIX,1)", "VALUE(!=,1)", "VALUE(>,1)", "VALUE(>=,1)", "VALUE(<,1)",
     "VALUE(<=,1)", "VALUE(CONTAINS,1)", "KEY(=,\"b\"), VALUE(=,\"c\")"});

const AcceptedCase kAcceptedCases[] = {
    {"Nothing", "", ""},
    {"OnlyComments", "# a\n\n# b\n", ""},
    {"EmptyClass", "CLASS A END\n", "CLASS \"A\"\nEND\n"},
    {"QuotedReservedWord", "CLASS \"SELECT\" END\n", "CLASS \"SELECT\"\nEND\n"},
    {"WordAcrossAComment", "CLASS abc#x\ndef\nEND\n", "CLASS \"abcdef\"\nEND\n"},
    {"Quotes", "CLASS 'a\"b' END\n", "CLASS \"a\"\"b\"\nEND\n"},
    {"DiscardClass", "CLASS *DISCARD* END\n", "CLASS \"*DISCARD*\"\nEND\n"},
    {"EveryTest", kEveryTest, kEveryTest},
    {"TestsWithBlanks",
     "CLASS A SELECT 1: ATTR(=,a), KEY(< =,a); 2: ATTR(=,a), VALUE(! =,1); END\n",
     with_tests({"KEY(<=,\"a\")", "VALUE(!=,1)"})},
    {"ReferencesToEarlierItems",
     "CLASS A SELECT 1: 1 = 2; 2: ATTR(PREFIX,$N1), KEY(=,$K1), VALUE(=,$V1);\n"
     "3: x = $N2;  # short form\n"
     "FETCH 1: $V3; 2: $F1; 3: IPNAME($K1); MAP a = $F3; b = $N3; c = WARNING; END\n",
     "CLASS \"A\"\n  SELECT\n    1: ATTR(=,1), VALUE(=,2);\n"
     "    2: ATTR(PREFIX,$N1), KEY(=,$K1), VALUE(=,$V1);\n    3: ATTR(=,\"x\"), VALUE(=,$N2);\n"
     "  FETCH\n    1: $V3;\n    2: $F1;\n    3: IPNAME($K1);\n"
     "  MAP\n    \"a\" = $F3;\n    \"b\" = $N3;\n    \"c\" = \"WARNING\";\nEND\n"},
    {"NestedFunctions", "CLASS A SELECT 1:a=b; FETCH 1: SUBSTR(IPNAME($V1), 1, IPADDR(2)); END\n",
     "CLASS \"A\"\n  SELECT\n    1: ATTR(=,\"a\"), VALUE(=,\"b\");\n"
     "  FETCH\n    1: SUBSTR(IPNAME($V1),1,IPADDR(2));\nEND\n"},
    {"FormatIsAlwaysText",
     "CLASS A MAP a=PRINTF(CLASS,1); b=PRINTF($V1,1); c=PRINTF(5,1,'x'); END\n",
     "CLASS \"A\"\n  MAP\n    \"a\" = PRINTF(\"CLASS\", 1);\n    \"b\" = PRINTF(\"$V1\", 1);\n"
     "    \"c\" = PRINTF(\"5\", 1, \"x\");\nEND\n"},
    {"DefaultsFromSeveralSections",
     "MAP_DEFAULT a=1; END CLASS A END MAP_DEFAULT b=PRINTF(%d,2,'x'); END\n",
     "CLASS \"A\"\nEND\nMAP_DEFAULT\n  \"a\" = 1;\n  \"b\" = PRINTF(\"%d\", 2, \"x\");\nEND\n"},
    {"UnknownKeywordIsAString", "CLASS A MAP a=$nothing; b=$V0; END\n",
     "CLASS \"A\"\n  MAP\n    \"a\" = \"$nothing\";\n    \"b\" = \"$V0\";\nEND\n"},
    {"HighBytesAndCarriageReturns", "CLASS \xFF\x80\r\nEND\r\n", "CLASS \"\xFF\x80\"\nEND\n"}};
INSTANTIATE_TEST_SUITE_P(Parse, AcceptedClasses, testing::ValuesIn(kAcceptedCases), test::kRowName);

TEST(Parse, LeavesNoListsWhenThereIsNothing) {
  EXPECT_EQ(test::parse_class_text("# only a comment\n"), 0);
  EXPECT_EQ(ZEMAD_ConfigurationList, nullptr);
  EXPECT_EQ(ZEMAD_ConstantList, nullptr);
  EXPECT_EQ(ZEMAD_DefaultMapList, nullptr);
}

TEST(Parse, SharesConstantsAndKeepsTextAndNumberApart) {
  EXPECT_EQ(parse_classes("CLASS A MAP a='5'; b=5; c='5'; d=5; END\n").constants, 2);
}

// Refused -----------------------------------------------------------------------------------------

struct RefusedCase {
  const char* name;
  std::string text;
  int result;
  std::string first_message;
};

class RefusedClasses : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedClasses, AreReported) {
  const ParsedClasses parsed = parse_classes(GetParam().text);
  EXPECT_EQ(parsed.result, GetParam().result);
  ASSERT_FALSE(parsed.messages.empty());
  EXPECT_EQ(parsed.messages.front(), GetParam().first_message);
}

std::string syntax(int line, const std::string& keyword) {
  return "MAJOR PARSER 8 Parser test.cds:syntax error on line " + std::to_string(line) +
         " current keyword \"" + keyword + "\"";
}
std::string reference(const std::string& keyword, const std::string& index) {
  return "MAJOR PARSER 4 Parser test.cds: impossible variable reference on line 1 current keyword "
         "\"" +
         keyword + "\", index " + index;
}
std::string numbering(int expected, const std::string& given) {
  return "MINOR PARSER 2 Parser test.cds: line numbering faulty on line 1, " +
         std::to_string(expected) + " must be used instead of " + given;
}

const RefusedCase kRefusedCases[] = {
    // Syntax
    {"ReservedClassName", "CLASS SELECT END\n", 8, syntax(1, "SELECT")},
    {"NumberAsClassName", "CLASS 5 END\n", 8, syntax(1, "5")},
    {"ReservedWordWithoutUse", "CLASS A MAP OID = 1; END\n", 8, syntax(1, "OID")},
    {"LastWordWithoutNewline", "CLASS A\nEND", 9, syntax(2, "")},
    {"EndOfFileInAString", "CLASS 'A\nEND\n", 8, syntax(1, "")},
    {"SectionsOutOfOrder", "CLASS A MAP a=1; SELECT 1:a=b; END\n", 8, syntax(1, "SELECT")},
    {"EmptySection", "CLASS A SELECT END\n", 8, syntax(2, "END")},
    {"EmptyDefaults", "MAP_DEFAULT END\n", 8, syntax(2, "END")},
    {"TestsOutOfOrder", "CLASS A SELECT 1: ATTR(=,a), VALUE(=,1), KEY(=,b); END\n", 8,
     syntax(1, ",")},
    {"NoAttrTest", "CLASS A SELECT 1: VALUE(=,1); END\n", 8, syntax(1, "VALUE")},
    {"InequalityOfNames", "CLASS A SELECT 1: ATTR(!=,a); END\n", 8, syntax(1, "!")},
    {"ExistsOfValue", "CLASS A SELECT 1: ATTR(=,a), VALUE(EXISTS,1); END\n", 8,
     syntax(1, "EXISTS")},
    {"ContainsOfKey", "CLASS A SELECT 1: ATTR(=,a), KEY(CONTAINS,1); END\n", 8,
     syntax(1, "CONTAINS")},
    {"FunctionInMap", "CLASS A MAP a=SUBSTR('x',1,1); END\n", 8, syntax(1, "SUBSTR")},
    {"ReferenceInDefaults", "MAP_DEFAULT a=$V1; END\n", 8, syntax(1, "$V1")},
    {"FetchResultInShortForm", "CLASS A SELECT 1: a=$F1; END\n", 8, syntax(1, "$F1")},
    {"ReferenceFirstInShortForm", "CLASS A SELECT 1: $V1=a; END\n", 8, syntax(1, "$V1")},
    {"PrintfWithoutOperands", "CLASS A MAP a=PRINTF('x'); END\n", 8, syntax(1, ")")},
    {"PrintfWithoutFormat", "CLASS A MAP a=PRINTF(,1); END\n", 8, syntax(1, ",")},
    {"PrintfInPrintf", "CLASS A MAP a=PRINTF('x',PRINTF('y',1)); END\n", 8, syntax(1, "PRINTF")},
    {"NumberAsSlotName", "CLASS A MAP 5=1; END\n", 8, syntax(1, "5")},
    {"TextOutsideAStatement", "\nabc\n", 8, syntax(3, "abc")},
    {"LineOfTheNextWordCounts", "CLASS\n\n'a\nb' 7\n", 9, syntax(4, "7")},
    {"TooDeep", nested(400), 9,
     "MAJOR PARSER 8 Parser test.cds:yacc stack overflow on line 1 current keyword \"IPNAME\""},
    // References
    {"ReferenceToItself", "CLASS A SELECT 1:a=b; 2: ATTR(=,a), VALUE(=,$V3); END\n", 4,
     reference("$V3", "2")},
    {"ReferenceWithoutItems", "CLASS A MAP a=$N1; END\n", 4, reference("$N1", "0")},
    {"ReferenceToAnotherClass", "CLASS A SELECT 1:a=b; END CLASS B MAP a=$K1; END\n", 4,
     reference("$K1", "0")},
    {"FetchReferenceToItself", "CLASS A FETCH 1: $F1; END\n", 4, reference("$F1", "0")},
    {"NegativeReference", "CLASS A SELECT 1:a=b; MAP a=$V-3; END\n", 4, reference("$V-3", "-4")},
    {"LowestReference", "CLASS A MAP a=$V-99999999999; END\n", 4,
     reference("$V-99999999999", "-2147483648")},
    {"HighestReference", "CLASS A MAP a=$V99999999999; END\n", 4,
     reference("$V99999999999", "2147483646")},
    // Numbering
    {"FirstItemNumberedTwo", "CLASS A SELECT 2: a=b; END\n", 2, numbering(1, "2")},
    {"ItemNumberedTwice", "CLASS A SELECT 1: a=b; 1: ATTR(=,a); END\n", 2, numbering(2, "1")},
    {"FetchNumberedZero", "CLASS A FETCH 0: 'x'; END\n", 2, numbering(1, "0")},
    {"NumberIsClamped", "CLASS A FETCH 99999999999: 'x'; END\n", 2, numbering(1, "2147483647")},
    {"CountsBeginAnewInEachClass", "CLASS A SELECT 1:a=b; END CLASS B SELECT 2:a=b; END\n", 2,
     numbering(1, "2")},
    // The last error counts
    {"ReferenceBeforeNumbering", "CLASS A SELECT 2: ATTR(=,$V1); END\n", 4, reference("$V1", "0")},
    {"LastErrorCounts", "CLASS A SELECT 2:a=b; END CLASS B ; END\n", 8, numbering(1, "2")}};
INSTANTIATE_TEST_SUITE_P(Parse, RefusedClasses, testing::ValuesIn(kRefusedCases), test::kRowName);

// Recovery ----------------------------------------------------------------------------------------

TEST(Parse, AFaultyClassIsPassedOverToItsEnd) {
  EXPECT_THAT(parse_classes("CLASS A SELECT x y z; END CLASS B MAP ; END\nCLASS C END\n").messages,
              ElementsAre(syntax(1, "x"), syntax(1, ";")));
}

TEST(Parse, FaultyDefaultsArePassedOverToTheNextStatement) {
  EXPECT_THAT(parse_classes("MAP_DEFAULT a=; b=2; END\nCLASS 5\n").messages,
              ElementsAre(syntax(1, ";"), syntax(3, "5")));
}

TEST(Parse, ReservedWordsAreBackAfterAFaultyFormat) {
  EXPECT_THAT(parse_classes("CLASS A MAP a=PRINTF(;); END\nCLASS SELECT\n").messages,
              ElementsAre(syntax(1, ";"), syntax(3, "SELECT")));
  EXPECT_EQ(parse_classes("CLASS A MAP a=PRINTF(").result, 9);
  EXPECT_EQ(parse_classes("CLASS A END\n").result, 0);
}

TEST(Parse, NestsAsDeepAsTheStackOf600Holds) {
  EXPECT_EQ(parse_classes(nested(290)).result, 0);
  EXPECT_EQ(parse_classes(nested(300)).result, 9);
}

TEST(Parse, ReadsAnyNumberOfStatements) {
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    text += "CLASS C" + std::to_string(i) + " SELECT 1: \"_event_id\" = \"" + std::to_string(i) +
            "\"; END\n";
  }
  const ParsedClasses parsed = parse_classes(text);
  EXPECT_EQ(parsed.result, 0);
  EXPECT_EQ(parsed.constants, 20001);
}

// Memory ------------------------------------------------------------------------------------------

/// Each request in turn fails: the file is refused, and nothing leaks.
TEST(Parse, IsRefusedWhereverMemoryRunsShort) {
  const std::string text =
      "MAP_DEFAULT d=1; e=PRINTF(f,'g'); END CLASS A SELECT 1: a=b; 2: ATTR(=,a), KEY(=,$N1), "
      "VALUE(=,2); FETCH 1: SUBSTR($V1,1,2); MAP a=$F1; b=PRINTF('c',$V1,$V2); END\n";
  int requests = 0;
  for (int result = -1; result != 0; ++requests) {
    const util::ScopedAllocationFailure failure(requests);
    const ParsedClasses parsed = parse_classes(text);
    result = parsed.result;
    EXPECT_EQ(result == 0, parsed.messages.empty()) << "request " << requests;
  }
  EXPECT_GT(requests, 60);
}

/// Words of the language in any order, with a fixed seed: an answer every time, and no leak. What
/// happens to be accepted round-trips.
TEST(Parse, SurvivesAnyOrderOfWords) {
  const std::vector<std::string> words = {
      "CLASS", "A",   "END", "SELECT", "1",     "2",   ":",   "=",      ";",           "ATTR",
      "(",     ")",   ",",   "KEY",    "VALUE", "'x'", "!",   "$V1",    "$F1",         "$N9",
      "\n",    "OID", "'",   "#",      "FETCH", "MAP", "a=1", "PRINTF", "MAP_DEFAULT", "SUBSTR"};
  std::mt19937 random(20231105);
  for (int round = 0; round < 5000; ++round) {
    std::string text = "CLASS A ";
    for (auto left = random() % 40; left > 0; --left) text += words[random() % words.size()] + " ";
    text += "END\n";
    const int result = test::parse_class_text(text);
    const std::string written = result == 0 ? class_file_text() : "";
    ZEMAD_KernelCleanup();
    if (result != 0) continue;
    EXPECT_EQ(parse_classes(written).text, written) << text;
  }
}

}  // namespace
}  // namespace zem::kernel
