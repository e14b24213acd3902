#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tools/fmt/class_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

using Kind = ClassOperand::Kind;

const FormatEntry* format_named(const ClassContext& context, const std::string& name) {
  const std::vector<FormatEntry>& entries = context.formats.entries();
  const auto found = std::ranges::find_if(
      entries, [&name](const FormatEntry& entry) { return entry.outline->name.text == name; });
  return found == entries.end() ? nullptr : &*found;
}

const FormatEntry* format_numbered(const ClassContext& context, const std::string& id) {
  for (const FormatEntry& entry : context.formats.entries()) {
    if (context.shapes[entry.index].id == id) return &entry;
  }
  return nullptr;
}

/// Where the class asks for its "_event_id".
Span id_place(const ClassOutline& outline) {
  for (const SelectItem& item : outline.selects) {
    if (item.slot_name() == "_event_id" && item.value) return item.value->operand.where;
  }
  return outline.where;
}

std::string renumber_text(const FormatEntry* named, const ClassContext& context) {
  if (named == nullptr) return "generate the classes anew, or leave this one out";
  return "FORMAT " + quoted(named->outline->name.text) + " is number " +
         context.shapes[named->index].id + ": generate the classes anew";
}

void check_event_id(const ClassOutline& outline, const std::string& id, ClassContext& context) {
  const FormatEntry* named = format_named(context, outline.name);
  const FormatEntry* selected = format_numbered(context, id);
  if (selected == nullptr) {
    context.findings.add(Code::kClassUnreached, id_place(outline),
                         "no FORMAT has the _event_id " + quoted(id) + ": the class gets no event",
                         renumber_text(named, context));
  } else if (named != nullptr && selected->outline->name.text != outline.name) {
    context.findings.add(Code::kClassOtherFormat, id_place(outline),
                         "class " + quoted(outline.name) + " selects the events of FORMAT " +
                             quoted(selected->outline->name.text),
                         renumber_text(named, context));
  }
}

/// The classes by the "_event_id" that they ask for: most ask for one, and there are many.
class ClassesById {
 public:
  explicit ClassesById(const ClassFileOutline& file) {
    for (const ClassOutline& outline : file.classes) {
      const auto id = outline.is_whole ? outline.event_id() : std::nullopt;
      (id ? by_id_[*id] : others_).push_back(&outline);
    }
  }

  /// True when some class may take events of that shape. One with a fault may take any.
  [[nodiscard]] bool any_may_take(const EventShape& shape) const {
    const auto may_take = [&shape](const ClassOutline* outline) {
      return !outline->is_whole ||
             (!outline->selects.empty() &&
              std::ranges::all_of(outline->selects, [&shape](const SelectItem& item) {
                return may_hold(item, shape);
              }));
    };
    const auto same_id = by_id_.find(shape.id);
    return (same_id != by_id_.end() && std::ranges::any_of(same_id->second, may_take)) ||
           std::ranges::any_of(others_, may_take);
  }

 private:
  std::unordered_map<std::string, std::vector<const ClassOutline*>> by_id_;
  std::vector<const ClassOutline*> others_;
};

// Order -------------------------------------------------------------------------------------------

bool is_reference(const ClassOperand& operand) {
  return operand.kind != Kind::kText && operand.kind != Kind::kNumber;
}

/// The test as a text by which it can be compared; references mean something else in each class.
void append_test(std::string& text, const ClassTest& test, bool& is_comparable) {
  is_comparable = is_comparable && !is_reference(test.operand);
  text += operator_text(test.operator_code);
  text += test.operand.kind == Kind::kNumber ? '#' : '"';
  text += test.operand.text;
  text += '\0';
}

/// Every event has "_event_id", and no text fails an order test or lacks the empty text.
bool holds_always(const SelectItem& item) {
  if (item.slot_name() != "_event_id" || item.key) return false;
  if (!item.value) return true;
  const ClassTest& value = *item.value;
  if (value.operand.kind != Kind::kText) return false;
  if (value.operator_code == ZEMAD_OPERATOR_EQUAL) return false;
  return value.operand.text.empty() || (value.operator_code >= ZEMAD_OPERATOR_NOT_EQUAL &&
                                        value.operator_code <= ZEMAD_OPERATOR_LESS_EQUAL);
}

/// What a class asks for, apart from what always holds.
struct Conditions {
  std::vector<std::string> texts;
  bool is_comparable = true;
};

Conditions conditions_of(const ClassOutline& outline) {
  Conditions conditions;
  for (const SelectItem& item : outline.selects) {
    if (holds_always(item)) continue;
    std::string& text = conditions.texts.emplace_back();
    append_test(text, item.attr, conditions.is_comparable);
    text += item.key ? 'K' : ' ';
    if (item.key) append_test(text, *item.key, conditions.is_comparable);
    text += item.value ? 'V' : ' ';
    if (item.value) append_test(text, *item.value, conditions.is_comparable);
  }
  return conditions;
}

/// The classes so far, found by the first thing that they ask for.
class EarlierClasses {
 public:
  void add(const ClassOutline& outline, Conditions conditions) {
    if (!conditions.is_comparable) return;
    if (conditions.texts.empty()) {
      if (unconditional_ == nullptr) unconditional_ = &outline;
      return;
    }
    const std::string first = conditions.texts.front();
    by_first_[first].push_back({&outline, std::move(conditions.texts)});
  }

  /// One that takes every event that these conditions select; null when there is none.
  [[nodiscard]] const ClassOutline* taker_of(const Conditions& conditions) const {
    if (unconditional_ != nullptr) return unconditional_;
    const std::unordered_set<std::string> wanted(conditions.texts.begin(), conditions.texts.end());
    for (const std::string& text : conditions.texts) {
      const auto candidates = by_first_.find(text);
      if (candidates == by_first_.end()) continue;
      for (const Entry& entry : candidates->second) {
        const auto is_wanted = [&wanted](const std::string& t) { return wanted.contains(t); };
        if (std::ranges::all_of(entry.texts, is_wanted)) return entry.outline;
      }
    }
    return nullptr;
  }

 private:
  struct Entry {
    const ClassOutline* outline;
    std::vector<std::string> texts;
  };

  const ClassOutline* unconditional_ = nullptr;
  std::unordered_map<std::string, std::vector<Entry>> by_first_;
};

void report_behind(const ClassOutline& outline, const ClassOutline& taker, Findings& findings) {
  findings.add(Code::kClassBehind, outline.where,
               "class " + quoted(outline.name) + " gets no event: class " + quoted(taker.name) +
                   " on line " + std::to_string(findings.source().line_of(taker.where.position)) +
                   " takes all of them before it",
               "put the particular class before the general one");
}

}  // namespace

void check_event_ids(ClassContext& context) {
  for (const ClassOutline& outline : context.file.classes) {
    const auto id = outline.is_whole ? outline.event_id() : std::nullopt;
    if (id) check_event_id(outline, *id, context);
  }
}

void check_formats_without_class(ClassContext& context) {
  const ClassesById classes(context.file);
  for (const FormatEntry& entry : context.formats.entries()) {
    const EventShape& shape = context.shapes[entry.index];
    if (classes.any_may_take(shape)) continue;
    context.format_findings.add(Code::kFormatWithoutClass, entry.outline->name.where,
                                "no class takes the events of FORMAT " +
                                    quoted(entry.outline->name.text) + ", number " + shape.id,
                                "generate the classes anew, or write one");
  }
}

void check_classes_behind(ClassContext& context) {
  EarlierClasses earlier;
  for (const ClassOutline& outline : context.file.classes) {
    if (!outline.is_whole || outline.selects.empty()) continue;
    Conditions conditions = conditions_of(outline);
    const ClassOutline* taker = earlier.taker_of(conditions);
    if (taker != nullptr) report_behind(outline, *taker, context.findings);
    earlier.add(outline, std::move(conditions));
  }
}

void check_classes_without_select(ClassContext& context) {
  for (const ClassOutline& outline : context.file.classes) {
    if (!outline.is_whole || !outline.selects.empty()) continue;
    context.findings.add(Code::kClassWithoutSelect, outline.where,
                         "a class without SELECT gets no event",
                         "select something that every event has: 1: ATTR(=,\"_event_id\");");
  }
}

}  // namespace zem::fmt
