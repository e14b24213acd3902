/// What every command of the format tool has: options, a run, and a way to end early. A command
/// writes what was asked for to `Console::out` and what it has to tell beside that to
/// `Console::err`; it returns its exit status, or throws a Failure, which the program prints.
#pragma once

#include <memory>
#include <span>
#include <stdexcept>
#include <string>

#include "tools/fmt/console.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library's own name
class App;
}

namespace zem::fmt {

/// Trouble is told apart as sysexits(3) does.
enum class ExitStatus : int {
  kDone = 0,
  kFound = 1,  ///< ran fine and found something: a fault, an unmatched message, a failed test
  kUsage = 64,
  kBadData = 65,      ///< a file was read and can not be used
  kNoInput = 66,      ///< a file could not be read
  kNoOutput = 73,     ///< a file could not be made
  kOutputError = 74,  ///< writing failed half-way
};

/// Ends the command: the program prints "zemad_fmt: " and the text, and exits with the status.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text) : runtime_error(text), status_(status) {}
  [[nodiscard]] ExitStatus status() const noexcept { return status_; }

 private:
  ExitStatus status_;
};

class Command {
 public:
  Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Adds the options and arguments; what they set lives in the command.
  virtual void declare(CLI::App& app) = 0;
  virtual ExitStatus run(Console& console) = 0;
};

/// One row of the program's table, see commands.cpp.
struct CommandEntry {
  const char* name;
  const char* summary;
  const char* example;  ///< shown by --help, one command line a line
  std::unique_ptr<Command> (*make)();
};

/// In the order in which --help lists them.
[[nodiscard]] std::span<const CommandEntry> commands();

}  // namespace zem::fmt
