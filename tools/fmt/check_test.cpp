// The command check by its real binary: every format file of the golden directory, with the class
// file and the configuration of the same name where there are any, and the output beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/golden.h"
#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace zem::test
