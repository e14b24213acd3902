#include <string>
#include <string_view>
#include <unordered_map>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/format_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

bool is_filled_by_adapter(std::string_view slot_name) {
  return slot_name == "hostname" || slot_name == "origin";
}

void check_argument(const FormatSpec& spec, const SlotLine& line, const PlacedWord& argument,
                    Findings& findings) {
  const MsgMapEntry* slot = spec.getmap(argument.text.c_str());
  if (slot == nullptr) {
    findings.add(Code::kPrintfUnknownSlot, argument.where,
                 "FORMAT " + quoted(spec.name()) + " has no slot " + quoted(argument.text),
                 "name a slot of this FORMAT, or add a line for it; no class can be generated");
  } else if (slot->kind() == kMapPrint) {
    findings.add(Code::kPrintfOfPrintf, argument.where,
                 "slot " + quoted(argument.text) + " is made by PRINTF itself, and " +
                     quoted(line.slot_name()) + " can not be made of it",
                 "name the slots that it is made of");
  }
}

void check_printf(const FormatSpec& spec, const SlotLine& line, Findings& findings) {
  if (line.arguments.empty()) {
    findings.add(Code::kPrintfWithoutArguments, line.value.where,
                 "PRINTF without arguments: the class language refuses the generated line",
                 "write the text in quotes without PRINTF");
  }
  for (const PlacedWord& argument : line.arguments) check_argument(spec, line, argument, findings);
}

/// An inherited PRINTF that found its slots in the parent, where it is reported otherwise.
void check_inherited_printf(const FormatEntry& entry, const FormatEntry& parent,
                            const PrintMapEntry& slot, Findings& findings) {
  const char* missing = slot.unresolvedArgument(entry.spec);
  if (missing == nullptr || slot.unresolvedArgument(parent.spec) != nullptr) return;
  findings.add(Code::kPrintfUnknownSlot, entry.heritage(),
               "the inherited slot " + quoted(slot.name()) + " is made of " + quoted(missing) +
                   ", which FORMAT " + quoted(entry.outline->name.text) + " does not have",
               "add a slot line " + quoted(missing) + " or " + quoted(slot.name()));
}

}  // namespace

void check_duplicate_slots(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    std::unordered_map<std::string, const SlotLine*> first_of_name;
    for (const SlotLine& line : entry.outline->slots) {
      const auto [first, is_new] = first_of_name.try_emplace(line.slot_name(), &line);
      if (is_new) continue;
      const std::size_t where = findings.source().line_of(first->second->name.where.position);
      findings.add(Code::kDuplicateSlot, line.name.where,
                   "slot " + quoted(line.slot_name()) + " is given on line " +
                       std::to_string(where) + " already; this line replaces it",
                   "leave one of them out");
    }
  }
}

/// Once, where it is written: who inherits it has the same trouble.
void check_defaults(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    for (const SlotLine& line : entry.outline->slots) {
      if (line.kind != kMapDefault || is_filled_by_adapter(line.slot_name())) continue;
      findings.add(Code::kDefaultNotFilled, line.value.where,
                   "slot " + line.slot_name() +
                       " DEFAULT is not filled by the adapter; the generated class can not match",
                   "give it a value; only hostname and origin have a default");
    }
  }
}

void check_printf_arguments(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    if (!entry.outline->is_whole) continue;
    const FormatEntry* parent = model.parent_of(entry);
    for (const PlacedSlot& slot : entry.slots()) {
      if (slot.entry->kind() != kMapPrint) continue;
      if (slot.line != nullptr) {
        check_printf(*entry.spec, *slot.line, findings);
      } else if (parent != nullptr) {
        check_inherited_printf(entry, *parent, static_cast<const PrintMapEntry&>(*slot.entry),
                               findings);
      }
    }
  }
}

}  // namespace zem::fmt
