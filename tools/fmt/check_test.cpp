// The command check by its real binary: every format file of the golden directory, with the class
// file and the configuration of the same name where there are any, and the output beside it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/golden.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"
#include "tools/fmt/finding.h"

namespace zem::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path kGolden = ZEM_SOURCE_DIR "/tests/golden/fmt/check";

/// The names without ".fmt", sorted.
std::vector<std::string> case_names() {
  std::vector<std::string> names;
  for (const fs::directory_entry& file : fs::directory_iterator(kGolden)) {
    if (file.path().extension() == ".fmt") names.push_back(file.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

void add_option(std::vector<std::string>& arguments, const char* option, const std::string& file) {
  if (fs::exists(kGolden / file)) arguments.insert(arguments.end(), {option, file});
}

ToolRun check(const std::string& name) {
  std::vector<std::string> arguments = {"check", name + ".fmt"};
  add_option(arguments, "--cds", name + ".cds");
  add_option(arguments, "--conf", name + ".conf");
  return run_tool(ZEM_FMT_TOOL, {.arguments = arguments, .directory = kGolden});
}

class FmtCheck : public testing::TestWithParam<std::string> {};

TEST_P(FmtCheck, FindsWhatIsExpected) {
  const ToolRun run = check(GetParam());
  const bool is_good = GetParam().starts_with("good.");
  EXPECT_EQ(run.end, is_good ? "exit 0" : "exit 1");
  EXPECT_EQ(run.err, "");
  expect_golden(kGolden / (GetParam() + ".out"), run.out);
}

INSTANTIATE_TEST_SUITE_P(Golden, FmtCheck, testing::ValuesIn(case_names()), [](const auto& test) {
  std::string name = test.param;
  std::ranges::replace(name, '.', '_');
  return name;
});

/// What a file is refused for without the tool knowing why is not expected to happen.
bool is_fallback(fmt::Code code) {
  return code == fmt::Code::kRefused || code == fmt::Code::kClassRefused;
}

TEST(FmtCheckCodes, EachHasACase) {
  std::string all;
  for (const std::string& name : case_names()) all += read_file(kGolden / (name + ".out"));
  for (const fmt::CodeEntry& entry : fmt::code_entries()) {
    if (is_fallback(entry.code)) continue;
    const std::string shown = std::string("[").append(entry.text).append("]");
    EXPECT_NE(all.find(shown), std::string::npos) << shown;
  }
}

TEST(FmtCheckCodes, EachHasAParagraphInTheManual) {
  const std::string manual = read_file(ZEM_SOURCE_DIR "/docs/man/zemad_fmt.1");
  for (const fmt::CodeEntry& entry : fmt::code_entries()) {
    const std::string title = std::string(".TP\n.B ").append(entry.text).append("\n");
    EXPECT_NE(manual.find(title), std::string::npos) << title;
  }
}

TEST(FmtCheckShipped, IsClean) {
  const std::string etc = ZEM_SOURCE_DIR "/etc/zemad_logfile";
  const ToolRun run = run_tool(
      ZEM_FMT_TOOL,
      {.arguments = {"check", etc + ".fmt", "--cds", etc + ".cds", "--conf", etc + ".conf"}});
  EXPECT_EQ(run.end, "exit 0");
  EXPECT_EQ(run.out + run.err, "");
}

TEST(FmtCheckFiles, AreNamedWhenTheyCanNotBeRead) {
  const std::string good = kGolden / "good.small.fmt";
  for (const char* option : {"--cds", "--conf"}) {
    const ToolRun run =
        run_tool(ZEM_FMT_TOOL, {.arguments = {"check", good, option, "/nowhere/x"}});
    EXPECT_EQ(run.end, "exit 66");
    EXPECT_THAT(run.err, HasSubstr("/nowhere/x"));
  }
}

}  // namespace
}  // namespace zem::test
