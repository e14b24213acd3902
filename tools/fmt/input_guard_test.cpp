// No command destroys what it reads, however the output is named; by the real binary.

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

struct GuardCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* end;
};

class Inputs : public testing::TestWithParam<GuardCase> {};

TEST_P(Inputs, AreNotDestroyed) {
  const TempDir dir;
  const std::string formats = "FORMAT All\n%s*\nmsg $1\nEND\n\n";
  const std::string path = dir.write("site.fmt", formats);
  const std::string log = dir.write("log", "a\nb\n");
  std::filesystem::create_symlink("site.fmt", dir / "link");
  const ToolRun run =
      run_tool(ZEM_FMT_TOOL, {.arguments = GetParam().arguments, .directory = dir.path()});
  EXPECT_EQ(run.end, GetParam().end) << run.out << run.err;
  EXPECT_EQ(read_file(path), formats);
  EXPECT_EQ(read_file(log), "a\nb\n");
}

const GuardCase kInputsCases[] = {
    {"ByTheClasses", {"cds", "site.fmt", "-o", "./site.fmt"}, "exit 64"},
    {"ThroughALink", {"cds", "site.fmt", "-o", "link"}, "exit 64"},
    {"ByUnmatchedMessages", {"match", "site.fmt", "--unmatched", "log", "log"}, "exit 64"},
    {"TheFormats", {"match", "site.fmt", "--unmatched", "link", "log"}, "exit 64"},
    {"ByNormalizing", {"normalize", "site.fmt", "-o", "site.fmt"}, "exit 0"},
    {"ByWhatCanBeBoth", {"match", "site.fmt", "--unmatched", "/dev/null", "/dev/null"}, "exit 0"}};
INSTANTIATE_TEST_SUITE_P(Commands, Inputs, testing::ValuesIn(kInputsCases), kRowName);

TEST(StandardInput, IsNotDestroyedEither) {
  const TempDir dir;
  const std::string log = dir.write("log", "a\n");
  (void)dir.write("site.fmt", "FORMAT B\nb\nEND\n");
  const std::string script = "exec '" ZEM_FMT_TOOL "' match site.fmt --unmatched log < log";
  const ToolRun run = run_tool("/bin/sh", {.arguments = {"-c", script}, .directory = dir.path()});
  EXPECT_EQ(run.end, "exit 64");
  EXPECT_EQ(run.err,
            "zemad_fmt: writing to \"log\" would destroy what is read from it; give the output a "
            "name of its own\n");
  EXPECT_EQ(read_file(log), "a\n");
}

}  // namespace
}  // namespace zem::test
