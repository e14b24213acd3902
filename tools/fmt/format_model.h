/// The FORMATs of an outline as the engine sees them: one compiled FormatSpec for each entry, with
/// inherited slots, made by the engine's own classes. So an entry that stands behind a syntax error
/// can be looked into as well, and is treated exactly as the daemon will treat it once the file is
/// mended.
#pragma once

#include <vector>

#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/format_outline.h"

class FormatSpec;
class MsgMapEntry;

namespace zem::fmt {

/// What one slot of a FORMAT is and where it is written.
struct PlacedSlot {
  const MsgMapEntry* entry;
  const SlotLine* line;  ///< null when it is inherited
};

struct FormatEntry {
  std::size_t index;  ///< in the file, from 0
  const EntryOutline* outline;
  FormatSpec* spec;

  [[nodiscard]] std::vector<PlacedSlot> slots() const;
  /// Where the parent is named, or else the name of this FORMAT: the place of what is inherited.
  [[nodiscard]] Span heritage() const;
};

class FormatModel {
 public:
  /// `outline` outlives the model.
  explicit FormatModel(const FormatOutline& outline);

  [[nodiscard]] const std::vector<FormatEntry>& entries() const noexcept { return entries_; }
  /// The first of that name above `entry`, as FOLLOWS finds it; null when there is none.
  [[nodiscard]] const FormatEntry* parent_of(const FormatEntry& entry) const;

 private:
  LogDriver set_;  ///< owns the specs
  std::vector<FormatEntry> entries_;
};

}  // namespace zem::fmt
