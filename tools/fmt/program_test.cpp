// The command line of the format tool, by its real binary.
#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

using testing::HasSubstr;

const std::string kShipped = ZEM_SOURCE_DIR "/etc/zemad_logfile.fmt";
const std::string kBroken = ZEM_SOURCE_DIR "/tests/golden/format/bad.counted_errors.fmt";

struct ExitCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* end;
};

class FmtExit : public testing::TestWithParam<ExitCase> {};

TEST_P(FmtExit, Status) {
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = GetParam().arguments});
  EXPECT_EQ(run.end, GetParam().end) << run.out << run.err;
}

const ExitCase kFmtExitCases[] = {
    {"NoSuchOption", {"cds", kShipped, "--loud"}, "exit 64"},
    {"NoSuchColour", {"--color=pink", "cds", kShipped}, "exit 64"},
    {"Help", {"--help"}, "exit 0"},
    {"ColourBehindTheCommand", {"cds", kShipped, "--color=never"}, "exit 0"},
    {"NoPlaceForTheOutput", {"cds", kShipped, "-o", "/nowhere/x"}, "exit 73"},
    {"FullDisk", {"cds", kShipped, "-o", "/dev/full"}, "exit 74"}};
INSTANTIATE_TEST_SUITE_P(CommandLine, FmtExit, testing::ValuesIn(kFmtExitCases), kRowName);

/// What each command does about the same trouble with its format file.
struct CommandCase {
  const char* name;
  std::vector<std::string> operands;  ///< behind the format file
  const char* on_bad_formats;
};

class EveryCommand : public testing::TestWithParam<CommandCase> {
 protected:
  static std::string end_of(const std::string& formats, const std::string& redirection = "") {
    const std::string tool = "exec '" ZEM_FMT_TOOL "' \"$@\" " + redirection;
    std::vector<std::string> arguments = {"-c", tool, "sh", GetParam().name, formats};
    arguments.insert(arguments.end(), GetParam().operands.begin(), GetParam().operands.end());
    return run_tool("/bin/sh", {.arguments = arguments, .input = "disk sda full\n"}).end;
  }
};

TEST_P(EveryCommand, TellsTroublesApart) {
  const std::string golden = ZEM_SOURCE_DIR "/tests/golden/fmt/";
  EXPECT_EQ(run_tool(ZEM_FMT_TOOL, {.arguments = {GetParam().name}}).end, "exit 64");
  EXPECT_EQ(end_of(golden + "explain/mail.fmt"), "exit 0");
  EXPECT_EQ(end_of(kBroken), GetParam().on_bad_formats);
  EXPECT_EQ(end_of("/nowhere.fmt"), "exit 66");
  EXPECT_EQ(end_of("/"), "exit 66");
  EXPECT_EQ(end_of(golden + "check/bad.order.fmt", "> /dev/full"), "exit 74");
}

const std::string kDiskTest = ZEM_SOURCE_DIR "/tests/golden/fmt/disk.test";

const CommandCase kEveryCommandCases[] = {
    {"check", {}, "exit 1"},    {"cds", {}, "exit 65"},        {"normalize", {}, "exit 65"},
    {"match", {}, "exit 65"},   {"explain", {"-"}, "exit 65"}, {"test", {kDiskTest}, "exit 65"},
    {"graph", {"-"}, "exit 65"}};
INSTANTIATE_TEST_SUITE_P(CommandLine, EveryCommand, testing::ValuesIn(kEveryCommandCases),
                         kRowName);

struct UsageCase {
  const char* name;
  std::string arguments;  ///< with one blank between them
  std::string message;    ///< behind the name of the tool
};

class FmtUsage : public testing::TestWithParam<UsageCase> {};

TEST_P(FmtUsage, SaysWhatIsWrongAndWhereHelpIs) {
  const auto& [name, arguments, message] = GetParam();
  const ToolRun run =
      run_tool("/bin/sh", {.arguments = {"-c", "exec '" ZEM_FMT_TOOL "' " + arguments}});
  EXPECT_EQ(run.end + run.out, "exit 64");
  const std::string command = message.substr(0, message.find(": "));
  const std::string help =
      command.starts_with(' ')
          ? "\"zemad_fmt" + command + " --help\" shows its options and an example\n"
          : "\"zemad_fmt --help\" shows all commands\n";
  EXPECT_EQ(run.err, "zemad_fmt" + message + "\n" + help);
}

const UsageCase kUsageCases[] = {
    {"Nothing", "", ": a command is needed"},
    {"NearACommand", "chek x.fmt", ": \"chek\" is no command; did you mean \"check\"?"},
    {"NoCommand", "frobnicate",
     ": \"frobnicate\" is no command; there are: check cds normalize match explain test graph"},
    {"NoSuchOption", "--loud", ": \"--loud\" is no option"},
    {"NoValue", "--color", ": --color needs auto|always|never behind it"},
    {"NoValueOfACommand", "match x.fmt --cds", " match: --cds needs CDS behind it"},
    {"NoQuotes", "explain x.fmt Nov 15",
     " explain: \"15\" is a word too many; one that holds blanks stands in quotes"},
    {"NoSuchOptionOfACommand", "check x.fmt --stats",
     " check: \"--stats\" is no option of this command"},
    {"OperandMissing", "test x.fmt", " test: TESTFILE is required"},
    {"NoneOfTheWords", "match x.fmt --format xml",
     " match: --format: \"xml\" is none of text|json|event"},
    {"NoNumber", "explain x.fmt - --nearest 0",
     " explain: --nearest: \"0\" is no number from 1 on"}};
INSTANTIATE_TEST_SUITE_P(CommandLine, FmtUsage, testing::ValuesIn(kUsageCases), kRowName);

TEST(FmtHelp, ListsEveryCommandAndGivesEachAnExample) {
  const ToolRun help = run_tool(ZEM_FMT_TOOL, {.arguments = {"--help"}});
  EXPECT_THAT(help.out, HasSubstr("Example:\n  zemad_fmt "));
  for (const char* command : {"check", "cds", "normalize", "match", "explain", "test", "graph"}) {
    EXPECT_THAT(help.out, HasSubstr(command));
    const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {command, "--help"}});
    EXPECT_EQ(run.end, "exit 0");
    EXPECT_THAT(run.out, HasSubstr(std::string("Example:\n  zemad_fmt ") + command));
  }
}

TEST(FmtVersion, StandsInTheManualPage) {
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {"--version"}});
  EXPECT_EQ(run.end, "exit 0");
  const std::string version = run.out.substr(0, run.out.find('\n'));
  EXPECT_THAT(version, testing::MatchesRegex("zemad_fmt [0-9.]+"));
  EXPECT_THAT(read_file(ZEM_SOURCE_DIR "/docs/man/zemad_fmt.1"),
              HasSubstr("\"zemad_logfile" + version.substr(version.find(' ')) + "\""));
}

/// The long options in a text, sorted.
std::set<std::string> options_in(const std::string& text) {
  const std::regex option("--[a-z]+");
  std::set<std::string> options;
  for (auto found = std::sregex_iterator(text.begin(), text.end(), option);
       found != std::sregex_iterator(); ++found) {
    options.insert(found->str());
  }
  return options;
}

/// The rows of the help that introduce an option; their descriptions may name others.
std::string option_column(const std::string& help) {
  return std::regex_replace(help, std::regex("(\n  .{26}).*"), "$1");
}

TEST_P(EveryCommand, IsCompletedWithItsOptions) {
  const std::string directory = ZEM_SOURCE_DIR "/packaging/completions/";
  const std::string name = GetParam().name;
  const std::string help = run_tool(ZEM_FMT_TOOL, {.arguments = {name, "--help"}}).out;
  std::set<std::string> options = options_in(option_column(help.substr(help.find("Options:"))));
  options.insert("--color");
  const std::string script = ". '" + directory + "zemad_fmt.bash'; COMP_WORDS=(zemad_fmt " + name +
                             " --); COMP_CWORD=2; _zemad_fmt; echo \"${COMPREPLY[@]}\"";
  EXPECT_EQ(options_in(run_tool("/bin/bash", {.arguments = {"-c", script}}).out), options);
  const std::string zsh = read_file(directory + "_zemad_fmt");
  for (const std::string& option : options) EXPECT_THAT(zsh, HasSubstr(option)) << name;
}

TEST(FmtFailure, SaysWhatTheEngineSaid) {
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {"cds", kBroken}});
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("error at line "));
}

}  // namespace
}  // namespace zem::test
