// What the format tool says is what the daemon does.
#include "tests/scenarios/scenario.h"
#include "tests/support/tool_run.h"

namespace zem::test {
namespace {

const std::string kShipped = ZEM_SOURCE_DIR "/etc/zemad_logfile";

/// The demonstration's log, and lines as no logger should write them: longer than a message may be,
/// with a NUL, with bytes that are no text, with a terminator of events.
std::string hard_log() {
  using namespace std::string_literals;
  const std::string head = "Nov 15 09:47:37 web01 app[7]: ";
  return read_file(ZEM_SOURCE_DIR "/script/demo-data/messages.log") + head +
         std::string(1200, 'x') + "\n" + head + "cut\0away\n"s + head + "\xff\xfe \x01 ;END\n" +
         head + "it's ' {quoted}\n" + head + std::string(480, '\'') + "\n\n";
}

TEST_F(Scenario, TheFormatToolMakesTheSameEvents) {
  const ToolRun tool = run_tool(
      ZEM_FMT_TOOL,
      {.arguments = {"match", kShipped + ".fmt", "--cds", kShipped + ".cds", "--format", "event"},
       .input = hard_log()});
  ASSERT_EQ(tool.end, "exit 1") << tool.err;

  home_.rewrite(home_.fmt_path(), read_file(kShipped + ".fmt"));
  home_.rewrite(home_.cds_path(), read_file(kShipped + ".cds"));
  start();
  home_.log(hard_log());
  std::string events;
  for (const std::string& event :
       events_after(static_cast<std::size_t>(count_of("END\n", tool.out))))
    events += event + "END\n";
  EXPECT_EQ(events, tool.out);
}

}  // namespace
}  // namespace zem::test
