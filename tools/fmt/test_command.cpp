#include "tools/fmt/test_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/event_slots.h"
#include "tools/fmt/atomic_file.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/kernel.h"
#include "tools/fmt/test_file.h"
#include "tools/fmt/visible.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

/// What became of a message: all there is to compare.
struct Outcome {
  Section format;
  std::optional<Section> event;  ///< nothing without a class file, and without a match
};

/// The set and the kernel that the messages are tried on.
class Bench {
 public:
  Bench(const std::string& format_path, const std::string& class_path) {
    load_formats(format_path, set_);
    order_formats(set_);
    if (!class_path.empty()) kernel_.emplace(class_path);
    host_.emplace(set_);
  }

  [[nodiscard]] Outcome outcome(const std::string& message);

 private:
  LogDriver set_;
  std::optional<Kernel> kernel_;
  std::optional<ThisHost> host_;
};

Section event_section(const KernelEvent& event) {
  Section section;
  if (event.class_name() == nullptr) return section;
  section.name = event.class_name();
  for (const MapEntry* slot : util::sl_items<MapEntry>(ZEMAD_MapEntryList)) {
    section.slots.push_back({slot->Name, slot->Value});
  }
  return section;
}

Outcome Bench::outcome(const std::string& message) {
  int index = -1;
  const std::string line = message + "\n";  // as it comes out of the FIFO
  const FormatSpec* spec = set_.bind(line.c_str(), index);
  Outcome outcome;
  if (spec == nullptr) return outcome;
  outcome.format.name = spec->name();
  format::visit_event_slots(*spec, index, host_->view(), [&](const char* name, const char* value) {
    outcome.format.slots.push_back({name, value});
  });
  if (kernel_) outcome.event = event_section(KernelEvent(*spec, index, host_->view()));
  return outcome;
}

const SlotText* find(const Section& section, std::string_view name) {
  const auto found = std::ranges::find(section.slots, name, &SlotText::name);
  return found == section.slots.end() ? nullptr : &*found;
}

/// What is there of the things that were expected.
Section narrowed(const Section& actual, const Section& expected) {
  Section section{actual.name, {}};
  for (const SlotText& slot : expected.slots) {
    const SlotText* found = find(actual, slot.name);
    if (found != nullptr) section.slots.push_back(*found);
  }
  return section;
}

/// `_event_id` changes with every FORMAT that comes or goes, and says no more than the name.
Section without_event_id(Section section) {
  std::erase_if(section.slots, [](const SlotText& slot) { return slot.name == "_event_id"; });
  return section;
}

/// A diff of the lines of two sections: common lines once, in the order of the expected ones.
std::string diff(const std::vector<std::string>& expected, const std::vector<std::string>& actual,
                 const Painter& paint) {
  const auto is_missing = [](const std::vector<std::string>& lines, const std::string& line) {
    return std::ranges::find(lines, line) == lines.end();
  };
  std::string text;
  for (std::size_t i = 0; i < std::max(expected.size(), actual.size()); ++i) {
    if (i < expected.size() && is_missing(actual, expected[i])) {
      text += paint(Color::kRed, "  - " + visible(expected[i])) + "\n";
    } else if (i < expected.size()) {
      text += "    " + visible(expected[i]) + "\n";
    }
    if (i < actual.size() && is_missing(expected, actual[i])) {
      text += paint(Color::kGreen, "  + " + visible(actual[i])) + "\n";
    }
  }
  return text;
}

class TestCommand final : public Command {
 public:
  void declare(CLI::App& app) override;
  ExitStatus run(Console& console) override;

 private:
  void run_file(const std::string& path, Bench& bench, Console& console);
  void judge(const TestCase& test, const std::string& path, const Outcome& outcome,
             Console& console);
  static std::string fault_of(const TestCase& test, const Outcome& outcome, const Painter& paint);
  void update(TestCase& test, const Outcome& outcome);
  void update_section(std::optional<Section>& expected, const Section& actual);

  std::string format_path_;
  std::string class_path_;
  std::vector<std::string> test_paths_;
  bool is_updating_ = false;
  long tests_ = 0;
  long failures_ = 0;
  long unjudged_classes_ = 0;
  long changes_ = 0;
};

void TestCommand::declare(CLI::App& app) {
  app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
  app.add_option("TESTFILE", test_paths_, "Messages and what must become of them")
      ->required()
      ->type_name("");
  app.add_option("--cds", class_path_, "The class file: judges classes, too")->type_name("CDS");
  app.add_flag("--update", is_updating_,
               "Rewrite the expectations to what is now true, for a review; a message without "
               "any gets all of them");
}

ExitStatus TestCommand::run(Console& console) {
  Bench bench(format_path_, class_path_);
  for (const std::string& path : test_paths_) run_file(path, bench, console);
  std::string summary = counted(static_cast<std::size_t>(tests_), "test") + ", ";
  summary += is_updating_ ? counted(static_cast<std::size_t>(changes_), "expectation") + " changed"
                          : std::to_string(failures_) + " failed";
  if (unjudged_classes_ > 0) {
    summary += ", " + std::to_string(unjudged_classes_) + " classes not judged: no --cds";
  }
  console.out.write(summary + "\n");
  return failures_ == 0 ? ExitStatus::kDone : ExitStatus::kFound;
}

void TestCommand::run_file(const std::string& path, Bench& bench, Console& console) {
  TestFile file = read_test_file(path);
  const long changes_before = changes_;
  for (TestFile::Part& part : file.parts) {
    ++tests_;
    const Outcome outcome = bench.outcome(part.test.message);
    if (is_updating_) {
      update(part.test, outcome);
    } else {
      judge(part.test, path, outcome, console);
    }
  }
  if (changes_ != changes_before) replace_file(path, rendered(file));
}

void TestCommand::judge(const TestCase& test, const std::string& path, const Outcome& outcome,
                        Console& console) {
  if (test.event && class_path_.empty()) ++unjudged_classes_;
  TestCase judged = test;
  if (class_path_.empty()) judged.event.reset();
  const std::string fault = fault_of(judged, outcome, console.paint);
  if (fault.empty()) return;
  ++failures_;
  console.out.write(path + ":" + std::to_string(test.line) + ": " +
                    console.paint(Color::kBold, visible(test.message)) + "\n" + fault + "\n");
}

/// Empty when everything that was expected is so.
std::string TestCommand::fault_of(const TestCase& test, const Outcome& outcome,
                                  const Painter& paint) {
  if (!test.format && !test.event) return "  nothing is expected of it; --update fills that in\n";
  std::vector<std::string> expected;
  std::vector<std::string> actual;
  const auto append = [](std::vector<std::string>& lines, const std::vector<std::string>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
  };
  if (test.format) {
    append(expected, section_lines(*test.format, "FORMAT", "UNMATCHED"));
    append(actual, section_lines(narrowed(outcome.format, *test.format), "FORMAT", "UNMATCHED"));
  }
  if (test.event) {
    const Section event = outcome.event.value_or(Section());
    append(expected, section_lines(*test.event, "CLASS", "DISCARDED"));
    append(actual, section_lines(narrowed(event, *test.event), "CLASS", "DISCARDED"));
  }
  return expected == actual ? "" : diff(expected, actual, paint);
}

void TestCommand::update(TestCase& test, const Outcome& outcome) {
  const bool is_new = !test.format && !test.event;
  if (test.format || is_new) update_section(test.format, without_event_id(outcome.format));
  if (outcome.event && (test.event || is_new)) update_section(test.event, *outcome.event);
  const bool expects_class = test.event && !test.event->name.empty();
  if (!class_path_.empty() && !outcome.event && expects_class) {  // no match, so no event any more
    test.event.reset();
    ++changes_;
  }
}

/// The slots that were expected are kept up to date; a section whose title changes is made anew.
/// What was true stays as it is, and is no change.
void TestCommand::update_section(std::optional<Section>& expected, const Section& actual) {
  const bool keeps_title = expected && expected->name == actual.name;
  const Section updated = keeps_title ? narrowed(actual, *expected) : actual;
  if (keeps_title && updated.slots == expected->slots) return;
  expected = updated;
  ++changes_;
}

}  // namespace

std::unique_ptr<Command> make_test_command() { return std::make_unique<TestCommand>(); }

}  // namespace zem::fmt
