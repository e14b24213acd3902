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

std::string_view captured(const FormatSpec& spec, int k, const Captures* captures) {
  const auto index = static_cast<std::size_t>(k - 1);  // huge for 0
  if (captures != nullptr && index < captures->count()) return captures->view(index);
  return spec.capturedText(k);
}

}  // namespace

std::optional<SlotSource> source_of(const FormatSpec& spec, const MsgMapEntry& slot) {
  if (slot.kind() == kMapVariable) return SlotSource{Kind::kVariable, slot.position()};
  if (slot.kind() != kMapDefault) return std::nullopt;
  if (slot.name() == "hostname"sv) return SlotSource{Kind::kHostName};
  if (slot.name() == "origin"sv) return origin_source(spec);
  return std::nullopt;
}

std::string_view value_of(const FormatSpec& spec, const SlotSource& source, const LocalHost& host,
                          const Captures* captures) {
  switch (source.kind) {
    case Kind::kVariable:
      return captured(spec, source.variable, captures);
    case Kind::kHostName:
      return host.name;
    case Kind::kNamedAddress:
      return SysLogUtils::IPaddr(captured(spec, source.variable, captures));
    case Kind::kHostAddress:
      break;
  }
  return host.address;
}

}  // namespace zem::format
