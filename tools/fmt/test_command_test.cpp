// `test`, by the real binary, and the file that it reads.

#include <map>
#include <regex>
#include <string>

#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"
#include "tools/fmt/command.h"
#include "tools/fmt/test_file.h"

namespace zem::test {
namespace {

const std::string kFormats = ZEM_SOURCE_DIR "/tests/golden/fmt/match.fmt";
const std::string kClasses = ZEM_SOURCE_DIR "/tests/golden/fmt/match.cds";
const std::string kEtc = ZEM_SOURCE_DIR "/etc/zemad_logfile";

ToolRun run(const std::vector<std::string>& arguments) {
  return run_tool(ZEM_FMT_TOOL, {.arguments = arguments});
}

TEST(ShippedTests, AreKeptByTheShippedFiles) {
  const ToolRun result = run({"test", kEtc + ".fmt", "--cds", kEtc + ".cds", kEtc + ".test"});
  EXPECT_EQ(result.end, "exit 0") << result.out << result.err;
}

TEST(ShippedTests, HaveThreeMessagesForEachFormat) {
  std::map<std::string, int> messages;
  for (const auto& part : fmt::read_test_file(kEtc + ".test").parts) {
    ++messages[part.test.format->name];
  }
  const std::string tree = run({"graph", kEtc + ".fmt", "--dot"}).out;
  const std::regex label("label=\"(\\S+) #");
  for (auto found = std::sregex_iterator(tree.begin(), tree.end(), label);
       found != std::sregex_iterator(); ++found) {
    EXPECT_GE(messages[(*found)[1]], 3) << (*found)[1];
  }
}

constexpr std::string_view kKept = R"(# What is fine.
> user anna logged in
FORMAT Login
  user = anna
CLASS Login
  msg = "anna logged in"

> noise of all kinds
FORMAT Noise
DISCARDED

> user  logged
UNMATCHED
)";

class TestFiles : public testing::Test {
 protected:
  ToolRun run_on(std::string_view text, const std::vector<std::string>& more = {}) {
    path_ = dir_.write("site.test", text);
    std::vector<std::string> arguments = {"test", kFormats, "--cds", kClasses, path_};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }

  TempDir dir_;
  std::string path_;
};

TEST_F(TestFiles, AreKept) {
  const ToolRun result = run_on(kKept);
  EXPECT_EQ(result.end + " " + result.out, "exit 0 3 tests, 0 failed\n");
}

TEST_F(TestFiles, SayWhichClassesWereNotJudged) {
  path_ = dir_.write("site.test", kKept);
  EXPECT_EQ(run({"test", kFormats, path_}).out,
            "3 tests, 0 failed, 2 classes not judged: no --cds\n");
}

TEST_F(TestFiles, AFailureShowsWhatDiffers) {
  const ToolRun result = run_on(
      "> user anna logged in\nFORMAT Login\n  user = bob\n  gone = x\nCLASS Login\n\n"
      "> noise again\nUNMATCHED\n\n> user x logged in\n");
  EXPECT_EQ(result.end, "exit 1");
  EXPECT_EQ(result.out, path_ +
                            ":1: user anna logged in\n"
                            "    FORMAT Login\n"
                            "  - \x20 user = bob\n"
                            "  + \x20 user = anna\n"
                            "  - \x20 gone = x\n"
                            "    CLASS Login\n\n" +
                            path_ +
                            ":7: noise again\n"
                            "  - UNMATCHED\n"
                            "  + FORMAT Noise\n\n" +
                            path_ +
                            ":10: user x logged in\n"
                            "  nothing is expected of it; --update fills that in\n\n"
                            "3 tests, 3 failed\n");
}

TEST_F(TestFiles, AreUpdatedForAReview) {
  const ToolRun result = run_on(
      "# kept\n> user anna logged in\nFORMAT Login\n  user = bob\n\n"
      "> noise again\nUNMATCHED\n# kept, too\n> user  x\tlogged in\n",
      {"--update"});
  EXPECT_EQ(result.end + " " + result.out, "exit 0 3 tests, 4 expectations changed\n");
  EXPECT_EQ(read_file(path_),
            "# kept\n> user anna logged in\nFORMAT Login\n  user = anna\n\n"
            "> noise again\nFORMAT Noise\n  msg = again\n# kept, too\n> user  x\tlogged in\n"
            "FORMAT Login\n  user = x\n  hidden = x\n"
            "CLASS Login\n  user = x\n  msg = x logged in\n");
  EXPECT_EQ(run({"test", kFormats, "--cds", kClasses, path_}).end, "exit 0");
}

TEST_F(TestFiles, WhatIsTrueIsNotChanged) {
  const std::string text = "> x\nUNMATCHED\nDISCARDED\n> y\nUNMATCHED\n" + std::string(kKept);
  const ToolRun result = run_on(text, {"--update"});
  EXPECT_EQ(result.end + " " + result.out, "exit 0 5 tests, no expectation changed\n");
  EXPECT_EQ(read_file(path_), text);
}

TEST(TestFileText, ComesBackAsItWas) {
  const std::string text =
      "\n# one\n> a \"b\"  \nFORMAT X\n  empty = \"\"\n  odd = \" \\\"\\\\\\x1b\"\n  plain = "
      "a\"b\\\n"
      "DISCARDED\n>\xc3\xa9\nUNMATCHED\n\n# last\n";
  const std::string canonical = std::string(text).replace(text.find(">\xc3"), 1, "> ");
  EXPECT_EQ(rendered(fmt::parse_test_file(text, "x")), canonical);
}

struct FaultCase {
  const char* name;
  std::string text;
  const char* fault;
};

class TestFileFaults : public testing::TestWithParam<FaultCase> {};

TEST_P(TestFileFaults, AreRefused) {
  try {
    (void)fmt::parse_test_file(GetParam().text, "t");
    FAIL() << "accepted";
  } catch (const fmt::Failure& failure) {
    EXPECT_EQ(failure.status(), fmt::ExitStatus::kBadData);
    EXPECT_STREQ(failure.what(), GetParam().fault);
  }
}

const FaultCase kTestFileFaultsCases[] = {
    {"NoMessage", "FORMAT A\n",
     "t:1: an expectation without a message before it; a message begins with \"> \""},
    {"UnknownWord", "> a\nFORMT A\n",
     "t:2: expected FORMAT, UNMATCHED, CLASS, DISCARDED, or a slot behind a blank"},
    {"NoName", "> a\nFORMAT\n", "t:2: FORMAT needs a name behind it"},
    {"NameTooMany", "> a\nUNMATCHED A\n", "t:2: UNMATCHED takes no name"},
    {"Twice", "> a\nFORMAT A\nUNMATCHED\n",
     "t:3: a second expectation of the same kind; one of them is too many"},
    {"SlotOfNothing", "> a\nUNMATCHED\n  a = b\n", "t:3: a slot belongs below FORMAT or CLASS"},
    {"NoValue", "> a\nFORMAT A\n  a b\n", "t:3: a slot is written as: name = value"},
    {"OpenQuote", "> a\nFORMAT A\n  a = \"b\n",
     R"(t:3: a quoted value ends with its quote and knows \", \\ and \x1b)"},
    {"CommentInside", "> a\n# b\nFORMAT A\n",
     "t:3: a comment between a message and its expectations; move it before the message"},
    {"TooLong", "> " + std::string(511, 'x'),
     "t:1: the message is longer than 510 bytes; shorten it, the adapter would cut it"}};
INSTANTIATE_TEST_SUITE_P(Texts, TestFileFaults, testing::ValuesIn(kTestFileFaultsCases), kRowName);

}  // namespace
}  // namespace zem::test
