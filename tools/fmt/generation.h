/// What the two generators share: options, the set in file order, and where the text goes.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

#include "tools/fmt/command.h"

class LogDriver;

namespace zem::fmt {

class GenerationCommand : public Command {
 public:
  void declare(CLI::App& app) override;
  ExitStatus run(Console& console) override;

 private:
  /// Writes the text of the set, which is in file order.
  virtual void generate(LogDriver& set, std::FILE* out) const = 0;

  std::string format_path_;
  std::string output_path_;  ///< empty: standard output
};

}  // namespace zem::fmt
