// Every slot of an event is a text with an empty key. A text is compared with texts only, so a
// number never equals it; and it is no number, so every order test passes it.
#include <algorithm>
#include <string_view>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/class_checks.h"

namespace zem::fmt {
namespace {

using Kind = ClassOperand::Kind;

bool is_filled(const MsgMapEntry& slot) {
  if (slot.kind() == kMapVariable) return true;
  const std::string_view name = slot.name();
  return slot.kind() == kMapDefault && (name == "hostname" || name == "origin");
}

/// One comparison of two texts.
bool compares(int operator_code, std::string_view text, std::string_view operand) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_EQUAL:
      return text == operand;
    case ZEMAD_OPERATOR_PREFIX:
      return text.starts_with(operand);
    case ZEMAD_OPERATOR_SUFFIX:
      return text.ends_with(operand);
    case ZEMAD_OPERATOR_CONTAINS:
      return text.find(operand) != std::string_view::npos;
    default:
      return true;
  }
}

/// The keyword table's only row has the empty name and counts as a slot.
bool may_find(const ClassTest& attr, const EventShape& shape) {
  if (attr.operand.kind == Kind::kNumber) return false;
  if (attr.operand.kind != Kind::kText || attr.operand.text.empty()) return true;
  const std::string& operand = attr.operand.text;
  if (attr.operator_code == ZEMAD_OPERATOR_EQUAL) return shape.slots.contains(operand);
  return std::ranges::any_of(shape.slots, [&](const std::string& name) {
    return compares(attr.operator_code, name, operand);
  });
}

bool may_hold_key(const ClassTest& key) {
  if (key.operator_code == ZEMAD_OPERATOR_EXISTS) return false;
  if (key.operator_code > ZEMAD_OPERATOR_SUFFIX) return false;
  if (key.operand.kind == Kind::kNumber) return false;
  return key.operand.kind != Kind::kText || key.operand.text.empty();
}

bool may_hold_value(const SelectItem& item, const EventShape& shape) {
  const ClassTest& value = *item.value;
  if (value.operand.kind == Kind::kNumber) return false;
  const bool is_id = item.slot_name() == "_event_id" && value.operand.kind == Kind::kText;
  return !is_id || compares(value.operator_code, shape.id, value.operand.text);
}

}  // namespace

std::vector<EventShape> event_shapes(const FormatModel& model) {
  std::vector<EventShape> shapes;
  for (const FormatEntry& entry : model.entries()) {
    EventShape& shape = shapes.emplace_back();
    shape.id = std::to_string(entry.index);
    shape.slots.insert("_event_id");
    for (const MsgMapEntry* slot : entry.spec->slots()) {
      if (is_filled(*slot)) shape.slots.insert(slot->name());
    }
  }
  return shapes;
}

bool may_hold(const SelectItem& item, const EventShape& shape) {
  return may_find(item.attr, shape) && (!item.key || may_hold_key(*item.key)) &&
         (!item.value || may_hold_value(item, shape));
}

}  // namespace zem::fmt
