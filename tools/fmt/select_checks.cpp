#include <algorithm>
#include <optional>
#include <string>

#include "tools/fmt/class_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

using Kind = ClassOperand::Kind;

bool is_number(const ClassTest& test) { return test.operand.kind == Kind::kNumber; }

bool is_order(const ClassTest& test) {
  return test.operator_code >= ZEMAD_OPERATOR_NOT_EQUAL &&
         test.operator_code <= ZEMAD_OPERATOR_LESS_EQUAL;
}

void report_number(const ClassTest& test, Findings& findings) {
  findings.add(Code::kItemNeverHolds, test.operand.where,
               "slots are texts, and the number " + test.operand.text + " equals none of them",
               "write it in quotes");
}

void check_key(const ClassTest& key, Findings& findings) {
  if (is_order(key)) {
    findings.add(Code::kItemNeverHolds, key.where,
                 std::string("keys know no operator ") + operator_text(key.operator_code) +
                     ": the item fails, and each event logs it",
                 "leave the KEY test out");
  } else if (is_number(key)) {
    report_number(key, findings);
  } else if (key.operator_code == ZEMAD_OPERATOR_EXISTS ||
             (key.operand.kind == Kind::kText && !key.operand.text.empty())) {
    findings.add(Code::kItemNeverHolds, key.where,
                 "the slots of log messages have an empty key, and this test never holds",
                 "leave the KEY test out");
  }
}

void check_value(const ClassTest& value, Findings& findings) {
  if (is_number(value)) {
    report_number(value, findings);
  } else if (is_order(value)) {
    findings.add(Code::kItemAlwaysHolds, value.where,
                 std::string("the operator ") + operator_text(value.operator_code) +
                     " compares numbers only, and holds for every text",
                 "slots are texts: use =, PREFIX, SUFFIX or CONTAINS");
  }
}

/// The FORMAT whose events the class selects; nothing when it selects by other things.
std::optional<std::size_t> format_of(const ClassOutline& outline, const ClassContext& context) {
  const std::optional<std::string> id = outline.event_id();
  const auto shape = std::ranges::find_if(
      context.shapes, [&id](const EventShape& candidate) { return candidate.id == id; });
  if (shape == context.shapes.end()) return std::nullopt;
  return static_cast<std::size_t>(shape - context.shapes.begin());
}

void report_unfilled(const SelectItem& item, const std::string& who, Findings& findings) {
  findings.add(Code::kSlotNeverFilled, item.attr.operand.where,
               who + " fills the slot " + quoted(*item.slot_name()) +
                   " from a message; the class can not match",
               "select a slot that a variable fills, and give the others in MAP");
}

void check_items(const ClassOutline& outline, ClassContext& context) {
  const std::optional<std::size_t> format = format_of(outline, context);
  for (const SelectItem& item : outline.selects) {
    const std::optional<std::string> name = item.slot_name();
    if (!name || name->empty()) continue;
    const auto has_slot = [&name](const EventShape& shape) { return shape.slots.contains(*name); };
    if (format) {
      const FormatEntry& entry = context.formats.entries()[*format];
      if (has_slot(context.shapes[*format])) continue;
      report_unfilled(item, "FORMAT " + quoted(entry.outline->name.text) + " never",
                      context.findings);
    } else if (!std::ranges::any_of(context.shapes, has_slot)) {
      report_unfilled(item, "no FORMAT", context.findings);
    }
  }
}

}  // namespace

void check_outcomes(ClassContext& context) {
  for (const ClassOutline& outline : context.file.classes) {
    for (const SelectItem& item : outline.selects) {
      if (is_number(item.attr)) report_number(item.attr, context.findings);
      if (item.key) check_key(*item.key, context.findings);
      if (item.value) check_value(*item.value, context.findings);
    }
  }
}

void check_unfilled_slots(ClassContext& context) {
  for (const ClassOutline& outline : context.file.classes) {
    if (outline.is_whole) check_items(outline, context);
  }
}

}  // namespace zem::fmt
