#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/format_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

const PlacedSlot* slot_of_variable(const std::vector<PlacedSlot>& slots, int k) {
  for (const PlacedSlot& slot : slots) {
    if (slot.entry->position() == k) return &slot;
  }
  return nullptr;
}

std::string variable_text(int k) { return std::string(1, '$').append(std::to_string(k)); }

bool is_star(const Piece& piece) { return piece.word.text == "%s*" || piece.word.text == "%s+"; }

}  // namespace

void check_unmapped_variables(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    if (!entry.outline->is_whole) continue;
    const std::vector<PlacedSlot> slots = entry.slots();
    for (int k = 1; k <= entry.outline->variable_count(); ++k) {
      if (slot_of_variable(slots, k) != nullptr) continue;
      findings.add(
          Code::kUnmappedVariable, entry.outline->variable(k)->word.where,
          "no slot of FORMAT " + quoted(entry.outline->name.text) + " takes " + variable_text(k),
          "add a slot line \"name " + variable_text(k) + "\", or \"-name " + variable_text(k) +
              "\" to keep it out of the event");
    }
  }
}

void check_variables_mapped_twice(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    if (!entry.outline->is_whole) continue;
    const std::vector<PlacedSlot> slots = entry.slots();
    for (const PlacedSlot& slot : slots) {
      const int k = slot.entry->position();
      const PlacedSlot* first = k > 0 ? slot_of_variable(slots, k) : &slot;
      if (first->entry == slot.entry) continue;
      const PlacedSlot& shown = slot.line != nullptr ? slot : *first;
      findings.add(Code::kVariableMappedTwice,
                   shown.line != nullptr ? shown.line->value.where : entry.heritage(),
                   "slots " + quoted(first->entry->name()) + " and " + quoted(slot.entry->name()) +
                       " of FORMAT " + quoted(entry.outline->name.text) + " both take " +
                       variable_text(k),
                   "let one of them take another variable, or leave it out");
    }
  }
}

/// A slot that the child gives itself is not missed.
void check_dropped_inheritance(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    const FormatEntry* parent = model.parent_of(entry);
    if (parent == nullptr || !entry.outline->is_whole) continue;
    for (const MsgMapEntry* slot : parent->spec->slots()) {
      if (slot->position() <= entry.spec->numvars()) continue;
      if (entry.spec->getmap(slot->name()) != nullptr) continue;
      findings.add(Code::kInheritedDropped, entry.heritage(),
                   "slot " + quoted(slot->name()) + " is not inherited: it takes " +
                       variable_text(slot->position()) + ", and this format line has " +
                       counted(entry.outline->variables.size(), "variable"),
                   "add variables, or a slot line " + quoted(slot->name()) + " of its own");
    }
  }
}

/// The last word that a star leaves belongs to a constant: what stands behind it must begin with
/// one.
void check_stars(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    const std::vector<Piece>& pieces = entry.outline->pieces;
    for (std::size_t i = 0; i + 1 < pieces.size() && entry.outline->is_whole; ++i) {
      const std::size_t behind = pieces[i + 1].word.text == " " ? i + 2 : i + 1;
      if (!is_star(pieces[i]) || behind >= pieces.size() || !pieces[behind].is_variable) continue;
      findings.add(Code::kStarBeforeVariable, pieces[i].word.where,
                   quoted(pieces[i].word.text) +
                       " takes every word it can and leaves none for the " +
                       quoted(pieces[behind].word.text) + " behind it",
                   "put a constant between them, or take single words with %s");
    }
  }
}

/// Only a comment can stand between the two. The first takes all the blanks there are.
void check_blanks(const FormatModel& model, Findings& findings) {
  const auto is_blank = [](const Piece& piece) { return piece.word.text == " "; };
  for (const FormatEntry& entry : model.entries()) {
    const std::vector<Piece>& pieces = entry.outline->pieces;
    const auto first = std::adjacent_find(
        pieces.begin(), pieces.end(),
        [&](const Piece& one, const Piece& other) { return is_blank(one) && is_blank(other); });
    if (!entry.outline->is_whole || first == pieces.end()) continue;
    findings.add(Code::kTwoBlanks, std::next(first)->word.where,
                 "FORMAT " + quoted(entry.outline->name.text) +
                     " never matches: the blank before the comment takes all blanks, and none is "
                     "left for this one",
                 "leave the comment or a blank out");
  }
}

}  // namespace zem::fmt
