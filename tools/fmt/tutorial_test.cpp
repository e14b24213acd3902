// The tutorial does what it says: its shell blocks are run one after another in an empty directory,
// and what each prints must be the text block behind it, or nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

struct Step {
  std::string commands;
  std::string output;
};

std::vector<Step> steps_of(const std::string& page) {
  std::vector<Step> steps;
  std::istringstream in(page);
  std::string* block = nullptr;
  for (std::string line; std::getline(in, line);) {
    if (line == "```sh") {
      block = &steps.emplace_back().commands;
    } else if (line == "```text") {
      block = &steps.back().output;
    } else if (line.starts_with("```")) {
      block = nullptr;
    } else if (block != nullptr) {
      *block += line + "\n";
    }
  }
  return steps;
}

TEST(Tutorial, DoesWhatItSays) {
  const TempDir dir;
  const std::string bin = std::filesystem::path(ZEM_FMT_TOOL).parent_path();
  const std::string page = read_file(ZEM_SOURCE_DIR "/docs/writing-formats.md");
  const std::vector<Step> steps = steps_of(page);
  EXPECT_GT(steps.size(), 10);
  for (const Step& step : steps) {
    const ToolRun run = run_tool("/bin/sh", {.arguments = {"-c", step.commands},
                                             .directory = dir.path(),
                                             .environment = {"PATH=" + bin + ":/usr/bin:/bin"}});
    EXPECT_EQ(run.out, step.output) << step.commands;
    EXPECT_EQ(run.err, "") << step.commands;
  }
}

}  // namespace
}  // namespace zem::test
