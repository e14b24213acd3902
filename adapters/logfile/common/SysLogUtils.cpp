#include "adapters/logfile/common/SysLogUtils.h"

#include <arpa/inet.h>

#include <array>
#include <optional>

#include "util/resolver.h"
#include "util/seam.h"

void SysLogUtils::init() { ipaddrs(); }

SysLogUtils::Hosts& SysLogUtils::ipaddrs() {
  static Hosts hosts;
  return hosts;
}

const char* SysLogUtils::IPaddr(const char* host) {
  return IPaddr(std::string_view(host == nullptr ? "" : host));
}

const char* SysLogUtils::IPaddr(std::string_view host) {
  if (const auto known = ipaddrs().find(host); known != ipaddrs().end()) {
    return known->second.address.getString();
  }
  const std::string name(host);
  const std::optional<in_addr> found = zem::util::current<zem::util::Resolver>().address_of(name);
  if (!found) return "???";
  std::array<char, INET_ADDRSTRLEN> dotted{};
  ::inet_ntop(AF_INET, &*found, dotted.data(), dotted.size());
  const auto added = ipaddrs().try_emplace(name, name.c_str(), dotted.data()).first;
  return added->second.address.getString();
}
