#include "tools/fmt/explain_classes.h"

#include <algorithm>
#include <string_view>

#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/zem_io.h"
#include "tools/fmt/visible.h"
#include "tools/fmt/words.h"
#include "util/slist.h"

namespace zem::fmt {
namespace {

std::string reference(char letter, std::size_t number) {
  return std::string(1, '$').append(1, letter).append(std::to_string(number));
}

std::vector<std::pair<std::string, std::string>> outgoing_slots() {
  std::vector<std::pair<std::string, std::string>> slots;
  for (const MapEntry* entry : util::sl_items<MapEntry>(ZEMAD_MapEntryList)) {
    slots.emplace_back(entry->Name, entry->Value);
  }
  return slots;
}

const Config& config_at(std::size_t index) {
  return *static_cast<const Config*>(SL_GetPos(ZEMAD_ConfigurationList, static_cast<int>(index)));
}

}  // namespace

/// What the event left behind is copied first: the trials use the same lists.
void ClassExplainer::show(const KernelEvent& event) const {
  const Slots outgoing = outgoing_slots();
  const std::string text = event.text() == nullptr ? "" : event.text();
  const std::vector<ClassTrial> trials = try_classes();
  out_.write("\nclasses\n");
  show_trials(trials);
  if (trials.empty() || !trials.back().is_selected) {
    out_.write("  " + paint_(Color::kYellow, "no class takes the event: it is discarded") + "\n");
    return;
  }
  show_selected(trials.size() - 1, event, outgoing, text);
}

void ClassExplainer::show_trials(const std::vector<ClassTrial>& trials) const {
  std::size_t others = 0;
  for (std::size_t i = 0; i < trials.size(); ++i) {
    if (trials[i].is_selected) continue;
    if (!shows_all_ && is_other_id(i, trials[i])) {
      ++others;
      continue;
    }
    show_others(std::exchange(others, 0));
    show_trial(i, trials[i]);
  }
  show_others(others);
}

void ClassExplainer::show_others(std::size_t count) const {
  if (count == 0) return;
  out_.write("  " + (count == 1 ? "1 class asks" : std::to_string(count) + " classes ask") +
             " for the events of another FORMAT\n");
}

bool ClassExplainer::is_other_id(std::size_t index, const ClassTrial& trial) const {
  if (!trial.failure || trial.failure->outcome != ItemOutcome::kValueFails) return false;
  return trial.failure->slot == "_event_id" && outline_.classes[index].event_id().has_value();
}

void ClassExplainer::show_trial(std::size_t index, const ClassTrial& trial) const {
  out_.write("  " + title(index) + ": " + reason(index, trial) + "\n");
}

std::string ClassExplainer::reason(std::size_t index, const ClassTrial& trial) const {
  if (!trial.failure) return "it has no SELECT items";
  const ItemFailure& failure = *trial.failure;
  const SelectItem& item = outline_.classes[index].selects[failure.item];
  const std::string text = "item " + quote(item.where) + " fails: ";
  if (failure.outcome == ItemOutcome::kNoSlot) return text + "the event has no such slot";
  const bool is_key = failure.outcome == ItemOutcome::kKeyFails;
  const ClassTest& test = is_key ? *item.key : *item.value;
  return text + (is_key ? "the key of " : "") + failure.slot + " is " + quoted(failure.value) +
         ", wanted is " + operator_text(test.operator_code) + " " +
         (test.operand.kind == ClassOperand::Kind::kNumber ? "the number " + failure.operand
                                                           : quoted(failure.operand));
}

void ClassExplainer::show_selected(std::size_t index, const KernelEvent& event,
                                   const Slots& outgoing, const std::string& text) const {
  out_.write("  " + title(index) + ": " + paint_(Color::kGreen, "all items hold") + "\n");
  std::size_t number = 0;
  for (const auto& [name, value] : selected_slots()) {
    out_.write("    " + reference('V', ++number) + "  " + paint_(Color::kBlue, name) + "  " +
               visible(value) + "\n");
  }
  if (outline_.classes[index].is_discard()) {
    out_.write("  " + paint_(Color::kYellow, "the event is discarded") + "\n");
    return;
  }
  show_fetches(index);
  if (event.class_name() == nullptr) {
    out_.write("  " + paint_(Color::kRed, "the event is dropped: its slots can not be made") +
               "\n");
    return;
  }
  show_slots(outgoing);
  show_text(text);
}

void ClassExplainer::show_fetches(std::size_t index) const {
  const FetchResults results = fetch_results(config_at(index));
  const std::vector<FetchItem>& items = outline_.classes[index].fetches;
  if (!items.empty()) out_.write("\nFETCH\n");
  for (std::size_t i = 0; i < results.values.size(); ++i) {
    out_.write("    " + reference('F', i + 1) + "  " + visible(results.values[i]) + "\n");
  }
  if (!results.has_failed) return;
  out_.write("    " + paint_(Color::kRed, quote(items[results.values.size()].where) + " fails") +
             "\n");
}

void ClassExplainer::show_slots(const Slots& outgoing) const {
  out_.write("\nslots\n");
  for (const auto& [name, value] : outgoing) {
    out_.write("    " + paint_(Color::kBlue, name) + "  " + visible(value) + "\n");
  }
}

void ClassExplainer::show_text(const std::string& text) const {
  const std::size_t limit = ZEMAD_EventLimit();
  out_.write("\n");
  if (text.empty()) {
    out_.write(paint_(Color::kRed, "the event text reaches " + std::to_string(limit) +
                                       " bytes: the event is refused") +
               "\n");
    return;
  }
  out_.write("event text, " + std::to_string(text.size()) + " bytes of less than " +
             std::to_string(limit) + "\n  " + visible(text.substr(0, text.size() - 1)) + "\n");
}

std::string ClassExplainer::title(std::size_t index) const {
  const ClassOutline& outline = outline_.classes[index];
  return paint_(Color::kBold, outline.name) + ", " + source_.path() + ":" +
         std::to_string(source_.line_of(outline.where.position));
}

/// The text of the file on one line.
std::string ClassExplainer::quote(Span where) const {
  std::string text(source_.text().substr(where.position, where.length));
  std::ranges::replace(text, '\n', ' ');
  text.resize(text.find_last_not_of(' ') + 1);
  return visible(text);
}

}  // namespace zem::fmt
