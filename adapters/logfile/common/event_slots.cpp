#include "adapters/logfile/common/event_slots.h"

#include <string_view>

#include "adapters/logfile/common/SysLogUtils.h"

namespace zem::format {
namespace {

using namespace std::string_view_literals;
using Kind = SlotSource::Kind;

SlotSource origin_source(const FormatSpec& spec) {
  const MsgMapEntry* hostname = spec.getmap("hostname");
  if (hostname == nullptr || hostname->kind() != kMapVariable) return {Kind::kHostAddress};
  return {Kind::kNamedAddress, hostname->position()};
}

}  // namespace

std::optional<SlotSource> source_of(const FormatSpec& spec, const MsgMapEntry& slot) {
  if (slot.kind() == kMapVariable) return SlotSource{Kind::kVariable, slot.position()};
  if (slot.kind() != kMapDefault) return std::nullopt;
  if (slot.name() == "hostname"sv) return SlotSource{Kind::kHostName};
  if (slot.name() == "origin"sv) return origin_source(spec);
  return std::nullopt;
}

std::string_view address_of(std::string_view host) { return SysLogUtils::addressOf(host); }

}  // namespace zem::format
