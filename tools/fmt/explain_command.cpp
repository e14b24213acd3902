#include "tools/fmt/explain_command.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/line_reader.h"
#include "tools/fmt/explain_classes.h"
#include "tools/fmt/explain_format.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/kernel.h"
#include "tools/fmt/message_reader.h"

namespace zem::fmt {
namespace {

constexpr std::size_t kNearestDefault = 3;
constexpr const char* kStandardInput = "-";

std::string refuse_count(const std::string& text) {
  const bool is_count = !text.empty() && text.size() < 10 && text != "0" &&
                        text.find_first_not_of("0123456789") == std::string::npos;
  return is_count ? "" : "\"" + text + "\" is no number from 1 on";
}

class ExplainCommand final : public Command {
 public:
  void declare(CLI::App& app) override;
  ExitStatus run(Console& console) override;

 private:
  /// The class file twice: in the kernel, and with the places of its words.
  struct Classes {
    Classes(const std::string& path, const std::string& setting_path)
        : kernel(path, setting_path),
          source(SourceText::read(path)),
          outline(read_class_outline(source)) {}

    Kernel kernel;
    SourceText source;
    ClassFileOutline outline;
  };

  void read_files();
  void explain_all(Console& console);
  void explain(const char* message, Console& console);
  void explain_event(const FormatSpec& spec, int index, Console& console);

  std::string format_path_;
  std::string class_path_;
  std::string setting_path_;
  std::string message_;
  std::optional<std::size_t> nearest_;
  bool shows_all_ = false;

  LogDriver set_;
  std::optional<SourceText> source_;
  std::optional<FormatOutline> outline_;
  std::optional<FormatModel> model_;
  std::optional<Classes> classes_;
  std::optional<ThisHost> host_;
  ExitStatus status_ = ExitStatus::kDone;
};

void ExplainCommand::declare(CLI::App& app) {
  app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
  app.add_option("MESSAGE", message_, "The message; \"-\": each line of standard input")
      ->required()
      ->type_name("");
  CLI::Option* const classes =
      app.add_option("--cds", class_path_, "The class file: explains the classes, too")
          ->type_name("CDS");
  app.add_option("--conf", setting_path_, "The configuration, for EventMaxSize (default: 4096)")
      ->type_name("CONF")
      ->needs(classes);
  app.add_option("--nearest", nearest_,
                 "How many FORMATs to show when none matches (default: 3), or that were tried in "
                 "vain before one did")
      ->type_name("COUNT")
      ->check(CLI::Validator(refuse_count, ""));
  app.add_flag("--all", shows_all_, "Show the classes of other FORMATs as well");
}

ExitStatus ExplainCommand::run(Console& console) {
  read_files();
  if (message_ == kStandardInput) {
    explain_all(console);
  } else {
    // What the daemon would read of it at once, with the newline of its line.
    const std::string line = (message_ + "\n").substr(0, format::LineReader::kLineBytesMax);
    explain(line.c_str(), console);
  }
  return status_;
}

void ExplainCommand::read_files() {
  load_formats(format_path_, set_);
  order_formats(set_);
  source_ = SourceText::read(format_path_);
  outline_ = read_outline(*source_);
  model_.emplace(*outline_);
  host_.emplace(set_);
  if (!class_path_.empty()) classes_.emplace(class_path_, setting_path_);
}

void ExplainCommand::explain_all(Console& console) {
  MessageReader reader({kStandardInput});
  bool is_first = true;
  for (Message message{}; reader.next(message); is_first = false) {
    if (!is_first) console.out.write("\n");
    explain(message.text.data(), console);
  }
}

void ExplainCommand::explain(const char* message, Console& console) {
  int index = -1;
  const FormatSpec* spec = set_.bind(message, index);
  const FormatExplainer formats(*model_, *source_, console);
  if (spec == nullptr) {
    formats.show_nearest(message, nearest_.value_or(kNearestDefault));
    status_ = ExitStatus::kFound;
    return;
  }
  formats.show_match(static_cast<std::size_t>(index), message);
  if (classes_) explain_event(*spec, index, console);
  if (nearest_) formats.show_nearest_before(static_cast<std::size_t>(index), message, *nearest_);
}

void ExplainCommand::explain_event(const FormatSpec& spec, int index, Console& console) {
  const KernelEvent event(spec, index, host_->view());
  ClassExplainer(classes_->outline, classes_->source, shows_all_, console).show(event);
}

}  // namespace

std::unique_ptr<Command> make_explain_command() { return std::make_unique<ExplainCommand>(); }

}  // namespace zem::fmt
