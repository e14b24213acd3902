#include "tools/fmt/program.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tools/fmt/command.h"

namespace zem::fmt {
namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 done, 1 ran fine and found something, 64 usage, 65 bad data,\n"
    "66 no input, 73 output not made, 74 output not written.";

const std::map<std::string, ColorMode> kColorModes = {
    {"auto", ColorMode::kAuto}, {"always", ColorMode::kAlways}, {"never", ColorMode::kNever}};

/// The command line's grammar and what it was used for.
struct CommandLine {
  CLI::App app{"Writes, checks, debugs, tries and generates format files and class files."};
  ColorMode color = ColorMode::kAuto;
  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;

  CommandLine();
  [[nodiscard]] Command& chosen();
};

CommandLine::CommandLine() {
  app.name("zemad_fmt");
  app.footer(std::string("zemad_fmt COMMAND --help shows an example of each.\n") + kExitStatuses);
  app.require_subcommand(1);
  app.fallthrough();
  app.add_option("--color", color, "Colours: auto (on a terminal, unless NO_COLOR is set)")
      ->transform(CLI::CheckedTransformer(kColorModes).description(""))
      ->option_text("auto|always|never");
  for (const CommandEntry& entry : fmt::commands()) {
    CLI::App* sub = app.add_subcommand(entry.name, entry.summary);
    sub->footer(std::string("Example:\n") + entry.example);
    commands.emplace_back(sub, entry.make());
    commands.back().second->declare(*sub);
  }
}

Command& CommandLine::chosen() {
  for (auto& [sub, command] : commands) {
    if (sub->parsed()) return *command;
  }
  throw Failure(ExitStatus::kUsage, "no command");  // the parser has refused such a line before
}

/// The end of a line that is not to be run: help was asked for, or the line is wrong.
ExitStatus explain_line(const CommandLine& line, const CLI::ParseError& error, Console& console) {
  std::ostringstream out;
  std::ostringstream err;
  const bool is_help = line.app.exit(error, out, err) == 0;
  console.out.write(out.str());
  console.err.write(err.str());
  return is_help ? ExitStatus::kDone : ExitStatus::kUsage;
}

ExitStatus run(CommandLine& line, std::span<char* const> arguments, Console& console) {
  try {
    line.app.parse(static_cast<int>(arguments.size()), arguments.data());
    console.paint = painter_for(line.color, STDOUT_FILENO);
    console.paint_err = painter_for(line.color, STDERR_FILENO);
    return line.chosen().run(console);
  } catch (const CLI::ParseError& error) {
    return explain_line(line, error, console);
  } catch (const Failure& failure) {
    console.err.write(std::string("zemad_fmt: ") + failure.what() + "\n");
    return failure.status();
  }
}

/// Flushes; a failure of that counts unless the command has already failed.
ExitStatus flushed(ExitStatus status, Console& console) {
  try {
    console.out.flush();
  } catch (const Failure& failure) {
    console.err.write(std::string("zemad_fmt: ") + failure.what() + "\n");
    if (status == ExitStatus::kDone || status == ExitStatus::kFound) status = failure.status();
  }
  try {
    console.err.flush();
  } catch (const Failure&) {  // there is nobody left to tell
  }
  return status;
}

}  // namespace

int run_program(std::span<char* const> arguments) {
  Output out(STDOUT_FILENO, "standard output");
  Output err(STDERR_FILENO, "standard error");
  Console console{out, err, Painter(false), Painter(false)};
  CommandLine line;
  const ExitStatus status = run(line, arguments, console);
  return static_cast<int>(flushed(status, console));
}

}  // namespace zem::fmt
