// The command explain by its real binary, and its view of a match against the engine's.
#include <gmock/gmock.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/ref.h"
#include "tests/support/golden.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/text_mutation.h"
#include "tests/support/tool_run.h"
#include "tools/fmt/format_edit.h"
#include "tools/fmt/format_trace.h"
#include "tools/fmt/test_file.h"

namespace zem::test {
namespace {

const std::string kGolden = ZEM_SOURCE_DIR "/tests/golden/fmt/explain";

struct ExplainCase {
  const char* name;
  std::vector<std::string> options;
  const char* message;
  const char* end;
};

class FmtExplain : public testing::TestWithParam<ExplainCase> {};

TEST_P(FmtExplain, Says) {
  std::vector<std::string> arguments = {"explain", "mail.fmt", GetParam().message};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = arguments, .directory = kGolden});
  EXPECT_EQ(run.end, GetParam().end);
  EXPECT_EQ(run.err, "");
  expect_golden(kGolden + "/" + GetParam().name + ".out", run.out);
}

const char* const kRefused = "Nov 15  09:47:37 hostA sendmail[123]: refused connect from 192.0.2.9";

const ExplainCase kFmtExplainCases[] = {
    {"match", {}, kRefused, "exit 0"},
    {"classes", {"--cds", "mail.cds"}, kRefused, "exit 0"},
    {"all_classes", {"--cds", "mail.cds", "--all"}, kRefused, "exit 0"},
    {"too_long", {"--cds", "mail.cds", "--conf", "small.conf"}, kRefused, "exit 0"},
    {"discarded", {"--cds", "mail.cds"}, "Nov 15 09:47:37 hostA sendmail[7]: alive", "exit 0"},
    {"no_class", {"--cds", "mail.cds"}, "disk sda full", "exit 0"},
    {"fetch_fails", {"--cds", "mail.cds"}, "Nov 15 09:47:37 hostA queue: x", "exit 0"},
    {"nearest", {}, "Nov 15 09:47:37 hostA sendmail: refused connect from 192.0.2.9", "exit 1"},
    {"nothing_behind_a_star", {"--nearest", "1"}, "disk sda1 sda2 ful", "exit 1"},
    {"left_over", {"--nearest", "1"}, "disk sda full again", "exit 1"},
    {"odd_bytes", {}, "Nov 15 09:47:37 h\xc3\xb6st\x01 a\tb\x1b[1m", "exit 1"},
    {"empty", {"--nearest", "2"}, "", "exit 1"}};
INSTANTIATE_TEST_SUITE_P(Golden, FmtExplain, testing::ValuesIn(kFmtExplainCases), kRowName);

TEST(FmtExplainInput, ExplainsEachLineOfStandardInput) {
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {"explain", "mail.fmt", "-"},
                                              .input = "disk sda full\nunknown\n",
                                              .directory = kGolden});
  EXPECT_EQ(run.end, "exit 1");
  EXPECT_THAT(run.out, testing::StartsWith("FORMAT Disk_Full"));
  EXPECT_THAT(run.out, testing::HasSubstr("\n\nno FORMAT matches\n  unknown\n"));
}

struct RankCase {
  const char* name;
  const char* formats;
  const char* message;
  const char* nearest;
};

class FmtExplainRanking : public testing::TestWithParam<RankCase> {};

TEST_P(FmtExplainRanking, BeginsWithTheNearest) {
  std::string text;
  std::istringstream lines(GetParam().formats);
  for (std::string line; std::getline(lines, line);) text += "FORMAT X\n" + line + "\nEND\n";
  const TempDir dir;
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {"explain", dir.write("x.fmt", text),
                                                            GetParam().message, "--nearest", "1"}});
  EXPECT_THAT(run.out, testing::HasSubstr(std::string("\n  is           ") + GetParam().nearest));
}

const RankCase kFmtExplainRankingCases[] = {
    {"HowFarItWent", "%s: job %s done\n%s: jobs", "a: job b failed", "%s: job %s done"},
    {"TextCountsMoreThanVariables", "job %s started\n%s %s %s %s %s", "job a b stops",
     "job %s started"},
    {"WordsBehindTheFault", "app: session opened for %s\napp: cache flushed by %s",
     "app session opened for bob", "app: session opened for %s"},
    {"PartsOfWordsDoNotCount", "x: %s logged in\ny: %s inned %s log", "z: bob logged innings",
     "x: %s logged in"},
    {"TheLaterOfEquals", "one %s\ntwo %s", "three x", "two %s"}};
INSTANTIATE_TEST_SUITE_P(Messages, FmtExplainRanking, testing::ValuesIn(kFmtExplainRankingCases),
                         kRowName);

TEST(FmtExplainInput, ShowsWhatWasTriedBeforeWhenAsked) {
  const auto run = [](const char* message) {
    return run_tool(ZEM_FMT_TOOL, {.arguments = {"explain", "mail.fmt", "--nearest", "1", message},
                                   .directory = kGolden});
  };
  const ToolRun base = run("Nov 15 09:47:37 hostA sendmail[123]: refuse connect from 192.0.2.9");
  EXPECT_EQ(base.end, "exit 0");
  EXPECT_THAT(base.out, testing::StartsWith("FORMAT Mail_Base"));
  EXPECT_THAT(base.out, testing::HasSubstr("\n\ntried before it, the nearest\n1. Mail_Refused"));
  EXPECT_THAT(run("Nov 15 09:47:37 hostA queue: x").out,
              testing::EndsWith("\n\nno FORMAT was tried before it\n"));
}

/// What the two commands say of each message, one line a message: FORMAT, class, event text.
std::string told_by_match(const std::string& out) {
  std::string told;
  const std::regex line(R"(\d+  (unmatched|(\S+) -> (\S+)))");
  std::istringstream in(out);
  for (std::string text; std::getline(in, text);) {
    std::smatch found;
    if (std::regex_match(text, found, line))
      told.append(found[2]).append(" ").append(found[3]).append("\n");
  }
  return told;
}

std::string told_by_explain(const std::string& out) {
  std::string told;
  const std::regex format(R"(FORMAT (\S+), number \d+, .*|no FORMAT matches)");
  const std::regex selected(R"(  (\S+), .*: all items hold)");
  std::istringstream in(out);
  for (std::string text; std::getline(in, text);) {
    std::smatch found;
    if (std::regex_match(text, found, format)) told.append("\n").append(found[1]).append(" ");
    if (std::regex_match(text, found, selected)) told += found[1].str();
    if (text == "  no class takes the event: it is discarded") told += "discarded";
    if (text.starts_with("  the event is dropped")) {
      told.replace(told.rfind(' ') + 1, std::string::npos, "discarded");
    }
  }
  return std::regex_replace(told.substr(1) + "\n", std::regex("\\*DISCARD\\*"), "discarded");
}

std::string events_of_explain(const std::string& out) {
  std::string events;
  std::istringstream in(out);
  for (std::string text; std::getline(in, text);) {
    if (text.starts_with("event text, ") && std::getline(in, text)) {
      events.append(text.substr(2)).append("\n");
    }
  }
  return events;
}

/// The two take different roads through the kernel: `explain` the one by records, `match` the short
/// one where it is open.
void expect_agreement(const std::string& formats, const std::string& classes,
                      const std::string& log) {
  const auto run = [&](const char* command, const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {command, formats, "--cds", classes};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run_tool(ZEM_FMT_TOOL, {.arguments = arguments, .input = log}).out;
  };
  const std::string explained = run("explain", {"-"});
  EXPECT_EQ(told_by_explain(explained), told_by_match(run("match", {})));
  EXPECT_EQ(events_of_explain(explained), run("match", {"--format", "event"}));
}

TEST(FmtExplainInput, AgreesWithMatchOnTheShippedMessages) {
  const std::string etc = ZEM_SOURCE_DIR "/etc/zemad_logfile";
  std::string log;
  for (const auto& part : fmt::read_test_file(etc + ".test").parts) log += part.test.message + "\n";
  expect_agreement(etc + ".fmt", etc + ".cds", log);
}

TEST(FmtExplainInput, AgreesWithMatchWhateverBecomesOfTheEvent) {
  const std::string head = "Nov 15 09:47:37 hostA ";
  expect_agreement(kGolden + "/mail.fmt", kGolden + "/mail.cds",
                   head + "sendmail[1]: refused connect from 192.0.2.9\n" + head +
                       "sendmail[7]: alive\nnobody\ndisk sda full\n" + head + "queue: x\n" + head +
                       "sendmail[1]: refused connect from 192.0.2.9\n");
}

TEST(FormatTrace, AgreesWithTheEngine) {
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 20000;
  const LogDriver components;  // makes the shared ones
  TextMutator random(kSeed, {""});
  for (int round = 0; round < kRounds; ++round) {
    const std::string format = random.text_of({"%s", "%s*", "%s+", "%t", " ", " ", "a", ":"});
    const std::string message = random.text_of({"a", "b", ":", " ", "a:", "\t "}) + "\n";
    const format::Ref<FormatSpec> spec(format::make_counted<FormatSpec>("x"));
    spec->setFmtStr(format.c_str());
    SysLogMsg text(message.c_str());
    const fmt::FormatTrace trace = fmt::trace_format(*spec, message.c_str());
    ASSERT_EQ(trace.is_match, spec->bind(text) != 0)
        << "seed " << kSeed << ": \"" << format << "\" on \"" << message << "\"";
    ASSERT_LE(trace.reached(), message.size());
  }
}

struct EditCase {
  const char* name;
  const char* format;
  const char* message;
  const char* edited;
};

class SmallestEdit : public testing::TestWithParam<EditCase> {};

TEST_P(SmallestEdit, IsFound) {
  const LogDriver components;
  const format::Ref<FormatSpec> spec(format::make_counted<FormatSpec>("x"));
  spec->setFmtStr(GetParam().format);
  const auto edit =
      fmt::smallest_edit(*spec, fmt::trace_format(*spec, GetParam().message), GetParam().message);
  EXPECT_EQ(edit ? edit->line : "none", GetParam().edited);
}

const EditCase kSmallestEditCases[] = {
    {"OtherCase", "a Failed %s", "a failed x", "a failed %s"},
    {"OtherWord", "a Failed %s b", "a Accepted x b", "a %s %s b"},
    {"MoreWords", "for %s from %s", "for a b from c", "for %s* from %s"},
    {"LeftOver", "from %s", "from a port 1", "from %s*"},
    {"EndsEarly", "from %s port %s", "from a", "from %s"},
    {"WordMissing", "a %s b", "a b", "a %s"},
    {"BlankMissing", "a: %s", "a:x", "a:%s"}};
INSTANTIATE_TEST_SUITE_P(Formats, SmallestEdit, testing::ValuesIn(kSmallestEditCases), kRowName);

}  // namespace
}  // namespace zem::test
