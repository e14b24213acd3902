#include "adapters/logfile/common/event_slots.h"

#include <string_view>

#include "adapters/logfile/common/SysLogUtils.h"

namespace zem::format {
namespace {

/// Address of the host that the message came from: the one it names itself, or else this one.
const char* origin_of(const FormatSpec& spec, const LocalHost& host) {
  const MsgMapEntry* hostname = spec.getmap("hostname");
  if (hostname == nullptr || hostname->kind() != kMapVariable) return host.address;
  const auto* variable = static_cast<const VarMapEntry*>(hostname);
  return SysLogUtils::IPaddr(spec.bvalue(variable).getString());
}

}  // namespace

const char* default_slot_value(const FormatSpec& spec, const char* name, const LocalHost& host) {
  using namespace std::string_view_literals;
  if (name == "hostname"sv) return host.name;
  if (name == "origin"sv) return origin_of(spec, host);
  return nullptr;
}

}  // namespace zem::format
