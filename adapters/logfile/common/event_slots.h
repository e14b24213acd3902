/// What a match becomes: the slots that the kernel is told of, in order. The daemon and the format
/// tool share it, so that what the tool shows is what the daemon does.
#pragma once

#include <array>
#include <charconv>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"

namespace zem::format {

/// The host that the messages are read on.
struct LocalHost {
  const char* name;
  const char* address;  ///< dotted, or "???"
};

/// The value of a DEFAULT slot after `spec` has matched: "hostname" is `host`; "origin" the address
/// of the host that the message itself names, or else of `host`. Null for any other name: nothing
/// fills such a slot.
[[nodiscard]] const char* default_slot_value(const FormatSpec& spec, const char* name,
                                             const LocalHost& host);

/// Hands each slot of the last match to `visit(name, value)`: "_event_id" (`index`), then in the
/// order of the FORMAT's slots those that the message's variables fill and the filled defaults.
/// The texts are good until the next match.
template <class Visit>
void visit_event_slots(const FormatSpec& spec, int index, const LocalHost& host, Visit visit) {
  std::array<char, 16> id{};
  std::to_chars(id.data(), id.data() + id.size() - 1, index);
  visit("_event_id", id.data());
  for (const MsgMapEntry* entry : spec.slots()) {
    if (entry->kind() == kMapVariable) {
      visit(entry->name(), spec.bvalue(static_cast<const VarMapEntry*>(entry)).getString());
    } else if (entry->kind() == kMapDefault) {
      const char* value = default_slot_value(spec, entry->name(), host);
      if (value != nullptr) visit(entry->name(), value);
    }
  }
}

}  // namespace zem::format
