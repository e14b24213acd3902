/// A command-line tool as its user meets it: started with arguments and input, judged by its exit
/// status and what it wrote. Link zem_tool_test_support.
#pragma once

#include <string>
#include <vector>

namespace zem::test {

struct ToolRun {
  std::string end;  ///< "exit 0", "signal 11"
  std::string out;
  std::string err;
};

struct ToolStart {
  std::vector<std::string> arguments = {};  ///< behind argument 0
  std::string input = {};                   ///< all of standard input, a regular file
  std::string directory = ".";
  std::vector<std::string> environment = {};  ///< "NAME=value"; all of it
};

/// Runs the binary to its end.
[[nodiscard]] ToolRun run_tool(const std::string& binary, const ToolStart& start);

}  // namespace zem::test
