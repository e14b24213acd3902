#include "tools/fmt/format_model.h"

#include <string>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/ref.h"
#include "tools/fmt/format_file.h"

namespace zem::fmt {
namespace {

void add_slot(FormatSpec& spec, const SlotLine& line) {
  const format::Ref<MsgMapEntry> entry(
      MsgMapEntry::create(&spec, line.name.text.c_str(), line.kind));
  entry->addRule(line.value.text.c_str(), &spec);
  for (const PlacedWord& argument : line.arguments) entry->addRule(argument.text.c_str(), &spec);
  spec.addSlot(entry.get());
}

/// The steps of the reader, in its order.
FormatSpec* add_spec(LogDriver& set, const EntryOutline& outline) {
  FormatSpec* parent = outline.parent ? set.getFormatSpec(outline.parent->text.c_str()) : nullptr;
  auto* spec = format::make_counted<FormatSpec>(outline.name.text.c_str());
  set.addFormatSpec(spec);
  for (const Piece& piece : outline.pieces) spec->addFormat(piece.word.text.c_str());
  spec->addFollows(parent);
  spec->addLookahead();
  for (const SlotLine& line : outline.slots) add_slot(*spec, line);
  return spec;
}

}  // namespace

FormatModel::FormatModel(const FormatOutline& outline) {
  const ReportCollector silence;  // the outline's findings say all of it
  for (const EntryOutline& entry : outline.entries) {
    FormatSpec* spec = add_spec(set_, entry);
    entries_.push_back({entries_.size(), &entry, spec});
  }
}

const FormatEntry* FormatModel::parent_of(const FormatEntry& entry) const {
  if (!entry.outline->parent) return nullptr;
  for (const FormatEntry& candidate : entries_) {
    if (candidate.index == entry.index) break;
    if (candidate.outline->name.text == entry.outline->parent->text) return &candidate;
  }
  return nullptr;
}

std::vector<PlacedSlot> FormatEntry::slots() const {
  std::vector<PlacedSlot> placed;
  for (const MsgMapEntry* entry : spec->slots()) {
    const bool is_own = entry->owner() == spec;
    placed.push_back({entry, is_own ? outline->slot_line(entry->name()) : nullptr});
  }
  return placed;
}

Span FormatEntry::heritage() const {
  return outline->parent ? outline->parent->where : outline->name.where;
}

}  // namespace zem::fmt
