#include "tools/fmt/match_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/choice.h"
#include "tools/fmt/classifier.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/input_guard.h"
#include "tools/fmt/kernel.h"
#include "tools/fmt/match_printer.h"
#include "tools/fmt/match_statistics.h"
#include "tools/fmt/message_reader.h"
#include "tools/fmt/progress.h"
#include "util/clock.h"

namespace zem::fmt {
namespace {

constexpr std::array kFormats = {Choice<MatchFormat>{"text", MatchFormat::kText},
                                 Choice<MatchFormat>{"json", MatchFormat::kJson},
                                 Choice<MatchFormat>{"event", MatchFormat::kEvent}};

util::Milliseconds now() { return util::current<util::Clock>().now(); }

class MatchCommand final : public Command {
 public:
  void declare(CLI::App& app) override;
  ExitStatus run(Console& console) override;

 private:
  /// The format file's set, its classes, and everything that hears of a message.
  struct Run;

  void require_sensible() const;
  void require_inputs_kept() const;
  [[nodiscard]] MatchFormat effective_format() const;
  void take(Run& run, const Message& message) const;
  void report(Run& run, util::Milliseconds elapsed) const;

  std::string format_path_;
  std::string class_path_;
  std::string setting_path_;
  std::vector<std::string> log_paths_;
  std::optional<MatchFormat> format_;
  std::string unmatched_path_;
  bool wants_statistics_ = false;
};

struct MatchCommand::Run {
  explicit Run(Console& run_console) : console(run_console) {}

  Console& console;
  LogDriver set;
  std::optional<Kernel> kernel;
  std::optional<Classifier> classifier;  ///< with a class file
  std::optional<ThisHost> host;
  std::optional<Output> unmatched;
  std::optional<MatchStatistics> statistics;
  std::unique_ptr<MatchPrinter> printer;
};

void MatchCommand::declare(CLI::App& app) {
  app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
  app.add_option("LOG", log_paths_, "Logs (default, and for \"-\": standard input)")->type_name("");
  CLI::Option* const classes =
      app.add_option("--cds", class_path_, "The class file: shows classes and event texts, too")
          ->type_name("CDS");
  app.add_option("--conf", setting_path_, "The configuration, for EventMaxSize (default: 4096)")
      ->type_name("CONF")
      ->needs(classes);
  add_choice(app, "--format", format_, kFormats,
             "text: for people (default); json: one object a message; event: the event texts");
  app.add_option("--unmatched", unmatched_path_, "File for the messages that no FORMAT matches")
      ->type_name("FILE");
  app.add_flag("--stats", wants_statistics_,
               "Count instead of showing each message; with --format both, the counts on "
               "standard error");
}

void MatchCommand::require_sensible() const {
  if (format_ == MatchFormat::kEvent && class_path_.empty()) {
    throw Failure(ExitStatus::kUsage, "--format event needs --cds: classes make the event texts");
  }
}

void MatchCommand::require_inputs_kept() const {
  if (unmatched_path_.empty()) return;
  std::vector<std::string> inputs = {format_path_, class_path_, setting_path_};
  inputs.insert(inputs.end(), log_paths_.begin(), log_paths_.end());
  if (log_paths_.empty()) inputs.emplace_back("-");
  require_other_file(unmatched_path_, inputs);
}

MatchFormat MatchCommand::effective_format() const {
  return format_.value_or(wants_statistics_ ? MatchFormat::kNone : MatchFormat::kText);
}

ExitStatus MatchCommand::run(Console& console) {
  require_sensible();
  require_inputs_kept();
  Run run(console);
  load_formats(format_path_, run.set);
  run.statistics.emplace(run.set.specs());
  order_formats(run.set);
  if (!class_path_.empty()) {
    run.kernel.emplace(class_path_, setting_path_);
    run.classifier.emplace();
  }
  run.host.emplace(run.set);
  if (!unmatched_path_.empty()) run.unmatched = Output::to_file(unmatched_path_);
  run.printer = make_match_printer(effective_format(), console);

  const util::Milliseconds start = now();
  MessageReader reader(log_paths_);
  {
    Progress progress(console.err, reader.bytes_total());
    for (Message message{}; reader.next(message);) {
      take(run, message);
      progress.show(reader.bytes_read());
    }
  }
  if (run.unmatched) run.unmatched->flush();
  if (wants_statistics_) report(run, now() - start);
  return run.statistics->matched() == run.statistics->messages() ? ExitStatus::kDone
                                                                 : ExitStatus::kFound;
}

void MatchCommand::take(Run& run, const Message& message) const {
  int index = -1;
  const FormatSpec* spec = run.set.bind(message.text, index);
  run.statistics->count_message(index);
  MatchResult result = {
      message, spec, index, run.set.captures(), run.host->view(), run.classifier.has_value(), {}};
  if (spec != nullptr && run.classifier) {
    result.event = run.classifier->classify(*spec, index, result.host, result.captures);
    if (wants_statistics_) run.statistics->count_event(result.event);
  }
  if (spec == nullptr && run.unmatched) {
    run.unmatched->write(message.content());
    run.unmatched->write("\n");
  }
  run.printer->print(result);
}

void MatchCommand::report(Run& run, util::Milliseconds elapsed) const {
  Output& out = format_ ? run.console.err : run.console.out;
  out.write(run.statistics->report(elapsed));
}

}  // namespace

std::unique_ptr<Command> make_match_command() { return std::make_unique<MatchCommand>(); }

}  // namespace zem::fmt
