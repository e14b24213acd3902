// `graph`, by the real binary.

#include <string>

#include "tests/support/golden.h"
#include "tests/support/table.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

const std::string kFormats = ZEM_SOURCE_DIR "/tests/golden/fmt/graph.fmt";

struct GraphCase {
  const char* name;
  std::vector<std::string> arguments;
};

class Graph : public testing::TestWithParam<GraphCase> {};

TEST_P(Graph, Output) {
  std::vector<std::string> arguments = GetParam().arguments;
  arguments.insert(arguments.begin(), {"graph", kFormats});
  const ToolRun run =
      run_tool(ZEM_FMT_TOOL, {.arguments = arguments, .input = "a b\na c b\na b\nz\n"});
  EXPECT_EQ(run.end + run.err, "exit 0");
  expect_golden(ZEM_SOURCE_DIR "/tests/golden/fmt/graph." + std::string(GetParam().name), run.out);
}

const GraphCase kGraphCases[] = {
    {"tree", {}}, {"uses", {"-"}}, {"dot", {"--dot"}}, {"uses_dot", {"--dot", "-"}}};
INSTANTIATE_TEST_SUITE_P(Outputs, Graph, testing::ValuesIn(kGraphCases), kRowName);

}  // namespace
}  // namespace zem::test
