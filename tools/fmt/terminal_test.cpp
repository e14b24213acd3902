// What the tool does on a terminal only: the progress bar, and colours that nobody asked for.
#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/daemon_process.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace zem::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

const std::string kFormats = ZEM_SOURCE_DIR "/tests/golden/fmt/match.fmt";

/// Enough for the bar, which is not drawn for each message.
std::string long_log() {
  std::string log;
  for (int i = 0; i < 10'000; ++i) log += "user anna logged in\n";
  return log;
}

std::string errors_of(const std::string& program, const std::vector<std::string>& arguments,
                      bool error_terminal) {
  DaemonProcess::Start start;
  start.arguments = arguments;
  start.error_terminal = error_terminal;
  DaemonProcess tool(program, start);
  EXPECT_EQ(tool.end(), "exit 0");
  return tool.errors();
}

TEST(ProgressBar, IsDrawnOnATerminalAndWipedInTheEnd) {
  const TempDir dir;
  const std::vector<std::string> arguments = {"match", kFormats, "--stats",
                                              dir.write("log", long_log())};
  EXPECT_THAT(errors_of(ZEM_FMT_TOOL, arguments, true),
              AllOf(HasSubstr("\r[################"), HasSubstr("....] "), HasSubstr(" %"),
                    EndsWith("\r\033[K")));
  EXPECT_EQ(errors_of(ZEM_FMT_TOOL, arguments, false), "");
}

TEST(ProgressBar, NeedsAKnownSize) {
  const TempDir dir;
  const std::string log = dir.write("log", long_log());
  const std::string command =
      "cat '" + log + "' | '" ZEM_FMT_TOOL "' match '" + kFormats + "' --stats > /dev/null";
  EXPECT_EQ(errors_of("/bin/sh", {"-c", command}, true), "");
}

struct ColourCase {
  const char* name;
  std::map<std::string, std::string> environment;
  const char* option;
  bool is_coloured;
};

class ColoursOnATerminal : public testing::TestWithParam<ColourCase> {};

TEST_P(ColoursOnATerminal, AreShown) {
  DaemonProcess::Start start;
  start.arguments = {"graph", kFormats, GetParam().option};
  start.environment = GetParam().environment;
  start.output_terminal = true;
  DaemonProcess tool(ZEM_FMT_TOOL, start);
  EXPECT_EQ(tool.end(), "exit 0");
  EXPECT_EQ(tool.output().find("\033[32m") != std::string::npos, GetParam().is_coloured);
}

INSTANTIATE_TEST_SUITE_P(
    Environments, ColoursOnATerminal,
    testing::Values(ColourCase{"Auto", {{"TERM", "xterm"}}, "--color=auto", true},
                    ColourCase{"NoColor", {{"NO_COLOR", "1"}}, "--color=auto", false},
                    ColourCase{"EmptyNoColor", {{"NO_COLOR", ""}}, "--color=auto", true},
                    ColourCase{"DumbTerminal", {{"TERM", "dumb"}}, "--color=auto", false},
                    ColourCase{"Always", {{"NO_COLOR", "1"}}, "--color=always", true},
                    ColourCase{"Never", {}, "--color=never", false}),
    kRowName);

}  // namespace
}  // namespace zem::test
