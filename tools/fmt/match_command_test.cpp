// `match`, by the real binary.
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <string>

#include "tests/support/golden.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kGolden = ZEM_SOURCE_DIR "/tests/golden/fmt/match.";
const std::string kFormats = kGolden + "fmt";
const std::string kClasses = kGolden + "cds";

/// Matched, discarded, refused by every class, unmatched; bytes that are no UTF-8, a NUL, an
/// over-long line, and a last line without newline.
const std::string kLog = "user anna logged in\nuser caf\xe9 \x1b[31m logged in\nnoise one two\n" +
                         std::string("silent zero\n\nuser \0x logged in\n", 31) + "long " +
                         std::string(600, 'x') + "\nuser bob logged in";

ToolRun match(std::vector<std::string> arguments, const std::string& input = kLog) {
  arguments.insert(arguments.begin(), {"match", kFormats});
  return run_tool(ZEM_FMT_TOOL, {.arguments = std::move(arguments), .input = input});
}

struct FormatCase {
  const char* name;
  std::vector<std::string> arguments;
};

class MatchFormats : public testing::TestWithParam<FormatCase> {};

TEST_P(MatchFormats, Output) {
  const ToolRun run = match(GetParam().arguments);
  EXPECT_EQ(run.end + run.err, "exit 1");
  expect_golden(kGolden + GetParam().name, run.out);
}

const FormatCase kMatchFormatsCases[] = {{"text", {"--cds", kClasses}},
                                         {"colour", {"--cds", kClasses, "--color=always"}},
                                         {"json", {"--format", "json"}},
                                         {"classes_json", {"--format", "json", "--cds", kClasses}},
                                         {"event", {"--format", "event", "--cds", kClasses}}};
INSTANTIATE_TEST_SUITE_P(Formats, MatchFormats, testing::ValuesIn(kMatchFormatsCases), kRowName);

TEST(Match, KeepsWhatNothingMatched) {
  const TempDir dir;
  const ToolRun run = match({"--unmatched", dir / "rest", "--stats"});
  EXPECT_EQ(read_file(dir / "rest"), "\nuser \n" + std::string(94, 'x') + "\n");
  EXPECT_THAT(run.out, HasSubstr("  unmatched                                 3  33.33 %\n"));
  EXPECT_THAT(run.out, HasSubstr("FORMATs never used: 1 of 5\n  Never\n"));
}

TEST(Match, StatisticsLeaveRoomForMessagesWhenBothAreWanted) {
  const ToolRun run = match({"--stats", "--format", "json"});
  EXPECT_THAT(run.out, Not(HasSubstr("never used")));
  EXPECT_THAT(run.err, HasSubstr("never used"));
}

TEST(Match, ReadsSeveralLogsAsOne) {
  const TempDir dir;
  const std::string first = dir.write("first", "user a logged in\nuser b logged in");
  const std::string second = dir.write("second", "user c logged in\n");
  const ToolRun run = match({"--format", "json", first, "-", second}, "user in logged in\n");
  EXPECT_EQ(run.end, "exit 0");
  for (const char* expected :
       {R"({"line":1,"message":"user a logged in")", R"({"line":2,"message":"user b logged in")",
        R"({"line":3,"message":"user in logged in")",
        R"({"line":4,"message":"user c logged in")"}) {
    EXPECT_THAT(run.out, HasSubstr(expected));
  }
}

TEST(Match, ShowsSlotsWhereverTheirValuesComeFrom) {
  const TempDir dir;
  const std::string formats =
      dir.write("hosts.fmt",
                "FORMAT One\none %s from %s\nhostname $2\norigin DEFAULT\nwho $1\nEND\n"
                "FORMAT Two\ntwo %s from %s\nhostname $2\norigin DEFAULT\nwho $1\nEND\n"
                "FORMAT Here\nhere %s\nwhat $1\nhostname DEFAULT\nEND\n");
  std::array<char, 256> host{};
  ASSERT_EQ(::gethostname(host.data(), host.size()), 0);
  const ToolRun run =
      run_tool(ZEM_FMT_TOOL, {.arguments = {"match", formats, "--format", "json"},
                              .input = "one anna from 192.0.2.7\ntwo \tbob  from\t192.0.2.8\n"
                                       "two \"b\xe9\" from 192.0.2.9\nhere now\n"});
  for (const std::string& expected :
       {std::string(R"("One","index":0,"values":["anna","192.0.2.7"],"slots":{"_event_id":"0",)"
                    R"("hostname":"192.0.2.7","origin":"192.0.2.7","who":"anna"}})"),
        std::string(R"("Two","index":1,"values":["bob","192.0.2.8"],"slots":{"_event_id":"1",)"
                    R"("hostname":"192.0.2.8","origin":"192.0.2.8","who":"bob"}})"),
        std::string(R"("values":["\"b\udce9\"","192.0.2.9"],"slots":{"_event_id":"1",)"
                    R"("hostname":"192.0.2.9","origin":"192.0.2.9","who":"\"b\udce9\""}})"),
        std::string(R"("slots":{"_event_id":"2","what":"now","hostname":")") + host.data() +
            R"("}})"}) {
    EXPECT_THAT(run.out, HasSubstr(expected));
  }
}

TEST(Match, KnowsAClassByItsWholeName) {
  const TempDir dir;
  const std::string formats = dir.write("one.fmt", "FORMAT One\n%s\na $1\nEND\n");
  const std::string classes = dir.write(
      "one.cds", "CLASS \"Odd;Name\"\n SELECT\n  1: ATTR(=,\"a\");\n MAP\n  a = $V1;\nEND\n");
  const ToolRun run = run_tool(
      ZEM_FMT_TOOL,
      {.arguments = {"match", formats, "--cds", classes, "--format", "json"}, .input = "x\n"});
  EXPECT_THAT(run.out, HasSubstr(R"("class":"Odd;Name","event":"Odd;Name;a=x;END"})"));
}

TEST(Match, LimitsTheEventTextsAsTheConfigurationSays) {
  const TempDir dir;
  const std::string settings = dir.write("small.conf", "EventMaxSize=30\nno setting\n");
  const ToolRun run = match({"--cds", kClasses, "--format", "event", "--conf", settings},
                            "user a logged in\nuser annabella logged in\n");
  EXPECT_EQ(run.end, "exit 0");
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "syntax error in configuration file, line 3 ignored\n");
  const auto shown = [&](const char* option) {
    return match({"--cds", kClasses, "--conf", settings, option}, "user annabella logged in\n").out;
  };
  EXPECT_THAT(shown("--color=never"), HasSubstr("-> Login, refused: its text grows too long\n"));
  EXPECT_THAT(shown("--stats"),
              HasSubstr("  made into events                          0   0.00 %"));
  EXPECT_THAT(shown("--stats"),
              HasSubstr("  refused: text too long                    1 100.00 %"));
}

struct MatchExit {
  const char* name;
  std::vector<std::string> arguments;
  const char* input;
  const char* end;
};

class MatchEnds : public testing::TestWithParam<MatchExit> {};

TEST_P(MatchEnds, Status) {
  EXPECT_EQ(match(GetParam().arguments, GetParam().input).end, GetParam().end);
}

const MatchExit kMatchEndsCases[] = {
    {"AllMatched", {}, "user a logged in\n", "exit 0"},
    {"NothingToMatch", {}, "", "exit 0"},
    {"OneUnmatched", {}, "user a logged in\n\n", "exit 1"},
    {"EventsWithoutClasses", {"--format", "event"}, "", "exit 64"},
    {"SettingsWithoutClasses", {"--conf", "/dev/null"}, "", "exit 64"},
    {"NoSettings", {"--cds", kClasses, "--conf", "/nowhere"}, "", "exit 66"},
    {"BadClasses", {"--cds", kFormats}, "", "exit 65"},
    {"NoClasses", {"--cds", "/nowhere"}, "", "exit 66"},
    {"NoLog", {"/nowhere"}, "", "exit 66"},
    {"LogIsADirectory", {"/"}, "", "exit 66"},
    {"UnmatchedNowhere", {"--unmatched", "/nowhere/x"}, "", "exit 73"},
    {"UnmatchedFull", {"--unmatched", "/dev/full"}, "\n", "exit 74"}};
INSTANTIATE_TEST_SUITE_P(Match, MatchEnds, testing::ValuesIn(kMatchEndsCases), kRowName);

}  // namespace
}  // namespace zem::test
