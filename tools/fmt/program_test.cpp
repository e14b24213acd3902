// The command line of the format tool, by its real binary.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

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

INSTANTIATE_TEST_SUITE_P(
    CommandLine, FmtExit,
    testing::Values(
        ExitCase{"NothingAskedFor", {}, "exit 64"}, ExitCase{"NoSuchCommand", {"chek"}, "exit 64"},
        ExitCase{"NoSuchOption", {"cds", kShipped, "--loud"}, "exit 64"},
        ExitCase{"NoSuchColour", {"--color=pink", "cds", kShipped}, "exit 64"},
        ExitCase{"ArgumentMissing", {"cds"}, "exit 64"}, ExitCase{"Help", {"--help"}, "exit 0"},
        ExitCase{"ColourBehindTheCommand", {"cds", kShipped, "--color=never"}, "exit 0"},
        ExitCase{"NoSuchFile", {"cds", "/nowhere.fmt"}, "exit 66"},
        ExitCase{"Directory", {"cds", "/"}, "exit 66"},
        ExitCase{"BadFormats", {"cds", kBroken}, "exit 65"},
        ExitCase{"NoPlaceForTheOutput", {"cds", kShipped, "-o", "/nowhere/x"}, "exit 73"},
        ExitCase{"FullDisk", {"cds", kShipped, "-o", "/dev/full"}, "exit 74"}),
    [](const auto& test) { return test.param.name; });

TEST(FmtHelp, ListsEveryCommandAndGivesEachAnExample) {
  const ToolRun help = run_tool(ZEM_FMT_TOOL, {.arguments = {"--help"}});
  for (const char* command : {"check", "cds", "normalize", "match", "explain", "test", "graph"}) {
    EXPECT_THAT(help.out, HasSubstr(command));
    const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {command, "--help"}});
    EXPECT_EQ(run.end, "exit 0");
    EXPECT_THAT(run.out, HasSubstr(std::string("Example:\n  zemad_fmt ") + command));
  }
}

TEST(FmtFailure, SaysWhatTheEngineSaid) {
  const ToolRun run = run_tool(ZEM_FMT_TOOL, {.arguments = {"cds", kBroken}});
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("error at line "));
}

}  // namespace
}  // namespace zem::test
