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
  return addressOf(host == nullptr ? "" : host).data();
}

std::string_view SysLogUtils::addressOf(std::string_view host) {
  if (const auto known = ipaddrs().find(host); known != ipaddrs().end()) {
    return known->second.address.view();
  }
  const std::string name(host);
  const std::optional<in_addr> found = zem::util::current<zem::util::Resolver>().address_of(name);
  if (!found) return "???";
  std::array<char, INET_ADDRSTRLEN> dotted{};
  ::inet_ntop(AF_INET, &*found, dotted.data(), dotted.size());
  const auto added = ipaddrs().try_emplace(name, name.c_str(), dotted.data()).first;
  return added->second.address.view();
}
