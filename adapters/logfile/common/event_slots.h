/// What a match becomes: the slots that the kernel is told of, in order. The daemon and the format
/// tool share it, so that what the tool shows is what the daemon does.
#pragma once

#include <array>
#include <charconv>
#include <optional>
#include <string_view>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"

namespace zem::format {

/// The host that the messages are read on.
struct LocalHost {
  const char* name;
  const char* address;  ///< dotted, or "???"
};

/// Where the value of an event's slot comes from.
struct SlotSource {
  enum class Kind {
    kVariable,      ///< a value that the message's variable `variable` captured
    kHostName,      ///< of this host
    kHostAddress,   ///< of this host
    kNamedAddress,  ///< of the host that the message names by its variable `variable`
  };
  Kind kind;
  int variable = 0;
};

/// The source of a slot of `spec`; nothing for a slot that no event has: a constant, a PRINTF, a
/// DEFAULT slot that nothing fills. "hostname DEFAULT" is this host, "origin DEFAULT" the address
/// of the host that the message itself names in the slot "hostname", or else of this one.
[[nodiscard]] std::optional<SlotSource> source_of(const FormatSpec& spec, const MsgMapEntry& slot);

/// The value that variable `k` of `spec` has captured; `captures`, when given, holds what the match
/// has.
[[nodiscard]] inline std::string_view captured_by(const FormatSpec& spec, int k,
                                                  const Captures* captures) {
  const auto index = static_cast<std::size_t>(k - 1);  // huge for 0
  if (captures != nullptr && index < captures->count()) return captures->view(index);
  return spec.capturedText(k);
}
/// The dotted address of the host, or "???". Finding one may block.
[[nodiscard]] std::string_view address_of(std::string_view host);
/// The value after a match of `spec`, good until the next one. `captures` as above.
[[nodiscard]] inline std::string_view value_of(const FormatSpec& spec, const SlotSource& source,
                                               const LocalHost& host,
                                               const Captures* captures = nullptr) {
  switch (source.kind) {
    case SlotSource::Kind::kVariable:
      return captured_by(spec, source.variable, captures);
    case SlotSource::Kind::kNamedAddress:
      return address_of(captured_by(spec, source.variable, captures));
    case SlotSource::Kind::kHostName:
      return host.name;
    case SlotSource::Kind::kHostAddress:
      break;
  }
  return host.address;
}

/// Hands each slot of the last match to `visit(name, value)`: "_event_id" (`index`), then in the
/// order of the FORMAT's slots those that have a source. The texts are good until the next match.
template <class Visit>
void visit_event_slots(const FormatSpec& spec, int index, const LocalHost& host, Visit visit) {
  std::array<char, 16> id{};
  std::to_chars(id.data(), id.data() + id.size() - 1, index);
  visit("_event_id", id.data());
  for (const MsgMapEntry* entry : spec.slots()) {
    const auto source = source_of(spec, *entry);
    if (!source) continue;
    const char* value = source->kind == SlotSource::Kind::kVariable
                            ? spec.captured(source->variable).getString()
                            : value_of(spec, *source, host).data();
    visit(entry->name(), value);
  }
}

}  // namespace zem::format
