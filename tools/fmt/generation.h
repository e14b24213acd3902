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
  /// True when the format file itself may be replaced by what is generated.
  [[nodiscard]] virtual bool may_replace_input() const = 0;
  /// Writes the text of the set, which is in file order; what there is to say of it is added to
  /// `warnings`, a line each.
  virtual void generate(LogDriver& set, std::FILE* out, std::string& warnings) const = 0;

  std::string format_path_;
  std::string output_path_;  ///< empty: standard output
};

}  // namespace zem::fmt
