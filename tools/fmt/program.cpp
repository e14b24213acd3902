#include "tools/fmt/program.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fmt/choice.h"
#include "tools/fmt/command.h"
#include "tools/fmt/name_memory.h"
#include "tools/fmt/near_word.h"
#include "tools/fmt/words.h"
#include "util/seam.h"

namespace zem::fmt {
namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 done, 1 ran fine and found something, 64 usage, 65 bad data,\n"
    "66 no input, 73 output not made, 74 output not written.";

constexpr std::array kColorModes = {Choice<ColorMode>{"auto", ColorMode::kAuto},
                                    Choice<ColorMode>{"always", ColorMode::kAlways},
                                    Choice<ColorMode>{"never", ColorMode::kNever}};

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
  app.footer(std::string("Example:\n  zemad_fmt match zemad_logfile.fmt --stats /var/log/syslog\n"
                         "zemad_fmt COMMAND --help shows an example of each.\n") +
             kExitStatuses);
  app.set_version_flag("--version", "zemad_fmt " ZEM_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  app.fallthrough();
  add_choice(app, "--color", color, kColorModes,
             "Colours: auto (on a terminal, unless NO_COLOR is set)");
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

/// What was meant by a first word that is no command.
std::string wrong_command(const std::string& word) {
  const auto known = commands();
  const auto nearest = nearest_word(word, known, &CommandEntry::name);
  std::string text = fmt::quoted(word) + " is no command";
  if (nearest != known.end()) return text + "; did you mean \"" + nearest->name + "\"?";
  text += "; there are:";
  for (const CommandEntry& entry : known) text.append(" ").append(entry.name);
  return text;
}

/// "--cds: 1 required CDS missing", said more plainly.
std::string missing_value(const std::string& text) {
  constexpr std::string_view kBefore = ": 1 required ";
  constexpr std::string_view kBehind = " missing";
  const std::size_t name_end = text.find(kBefore);
  if (name_end == std::string::npos || !text.ends_with(kBehind)) return text;
  const std::size_t begin = name_end + kBefore.size();
  return text.substr(0, name_end) + " needs " +
         text.substr(begin, text.size() - kBehind.size() - begin) + " behind it";
}

std::string fault_before_command(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> words = app.remaining();
  const auto is_word = [](const std::string& word) { return !word.starts_with('-'); };
  const auto word = std::ranges::find_if(words, is_word);
  if (word != words.end()) return wrong_command(*word);
  if (!words.empty()) return fmt::quoted(words.front()) + " is no option";
  return dynamic_cast<const CLI::RequiredError*>(&error) != nullptr ? "a command is needed"
                                                                    : missing_value(error.what());
}

std::string surplus_word(const std::string& word) {
  if (word.starts_with('-')) return fmt::quoted(word) + " is no option of this command";
  return fmt::quoted(word) + " is a word too many; one that holds blanks stands in quotes";
}

std::string fault_behind_command(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> surplus = app.remaining(true);
  const bool is_surplus = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  if (is_surplus && !surplus.empty()) return surplus_word(surplus.front());
  return missing_value(error.what());
}

/// What is wrong with the line, and where it says how to mend it.
std::string usage_fault(CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  if (!chosen.empty()) {
    const std::string command = "zemad_fmt " + chosen.front()->get_name();
    return command + ": " + fault_behind_command(app, error) + "\n\"" + command +
           " --help\" shows its options and an example\n";
  }
  return "zemad_fmt: " + fault_before_command(app, error) +
         "\n\"zemad_fmt --help\" shows all commands\n";
}

/// The end of a line that is not to be run: help was asked for, or the line is wrong.
ExitStatus explain_line(CommandLine& line, const CLI::ParseError& error, Console& console) {
  if (error.get_exit_code() != 0) {
    console.err.write(usage_fault(line.app, error));
    return ExitStatus::kUsage;
  }
  std::ostringstream help;
  (void)line.app.exit(error, help, help);
  console.out.write(help.str());
  return ExitStatus::kDone;
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
  NameMemory names(util::current<util::Resolver>());
  const util::ScopedDouble<util::Resolver> scope(names);
  CommandLine line;
  const ExitStatus status = run(line, arguments, console);
  return static_cast<int>(flushed(status, console));
}

}  // namespace zem::fmt
