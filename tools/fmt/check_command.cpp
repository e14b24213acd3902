#include "tools/fmt/check_command.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/fmt/check_classes.h"
#include "tools/fmt/check_format.h"
#include "tools/fmt/check_settings.h"
#include "tools/fmt/finding.h"

namespace zem::fmt {
namespace {

class CheckCommand final : public Command {
 public:
  void declare(CLI::App& app) override {
    app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
    app.add_option("--cds", class_path_, "The class file that goes with it")->type_name("CDS");
    app.add_option("--conf", setting_path_, "The configuration file")->type_name("CONF");
  }

  ExitStatus run(Console& console) override {
    CheckedFormats formats(format_path_);
    std::optional<CheckedClasses> classes;
    std::optional<CheckedSettings> settings;
    if (!class_path_.empty()) classes.emplace(class_path_, formats);
    if (!setting_path_.empty()) settings.emplace(setting_path_);
    show(formats.findings(), console);
    if (classes) show(classes->findings(), console);
    if (settings) show(settings->findings(), console);
    return status_;
  }

 private:
  void show(const Findings& findings, Console& console) {
    findings.print(console.out, console.paint);
    if (!findings.empty()) status_ = ExitStatus::kFound;
  }

  std::string format_path_;
  std::string class_path_;
  std::string setting_path_;
  ExitStatus status_ = ExitStatus::kDone;
};

}  // namespace

std::unique_ptr<Command> make_check_command() { return std::make_unique<CheckCommand>(); }

}  // namespace zem::fmt
