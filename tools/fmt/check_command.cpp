#include "tools/fmt/check_command.h"

#include <CLI/CLI.hpp>
#include <string>

#include "tools/fmt/check_format.h"
#include "tools/fmt/finding.h"

namespace zem::fmt {
namespace {

class CheckCommand final : public Command {
 public:
  void declare(CLI::App& app) override {
    app.add_option("FMT", format_path_, "The format file")->required();
  }

  ExitStatus run(Console& console) override {
    const CheckedFormats formats(format_path_);
    formats.findings().print(console.out, console.paint);
    return formats.findings().empty() ? ExitStatus::kDone : ExitStatus::kFound;
  }

 private:
  std::string format_path_;
};

}  // namespace

std::unique_ptr<Command> make_check_command() { return std::make_unique<CheckCommand>(); }

}  // namespace zem::fmt
