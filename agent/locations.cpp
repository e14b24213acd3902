#include "agent/locations.h"

#include <arpa/inet.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "agent/agent_comm.h"
#include "agent/agent_util.h"
#include "util/resolver.h"
#include "util/text.h"

namespace zem::agent {
namespace {

std::optional<in_addr_t> dotted_address(const std::string& location) {
  const in_addr_t address = ::inet_addr(location.c_str());
  if (address == INADDR_NONE) return std::nullopt;
  return address;
}

std::optional<in_addr_t> address_by_name(const std::string& location) {
  const std::optional<in_addr> found = util::current<util::Resolver>().address_of(location);
  if (!found.has_value()) return std::nullopt;
  return found->s_addr;
}

std::optional<in_addr_t> address_of(const std::string& location) {
  const std::optional<in_addr_t> dotted = dotted_address(location);
  return dotted.has_value() ? dotted : address_by_name(location);
}

void give_port(zem_handle& handle, std::size_t location, unsigned short port) {
  handle.ports[location] = htons(port);
  handle.portGiven[location] = true;
}

/// Fields outside 1..65535 count as not given.
void give_configured_ports(zem_handle& handle) {
  constexpr int kPortMax = 65'535;
  int field_count = 0;
  char** const fields = zem_split_entries("ServerPort", &field_count);
  const int count = std::min(field_count, handle.location_count);
  for (int i = 0; i < count; ++i) {
    const int port = util::saturating_atoi(fields[i]);
    if (port < 1 || port > kPortMax) continue;
    give_port(handle, static_cast<std::size_t>(i), static_cast<unsigned short>(port));
  }
}

/// A port that was given is never asked of the port mapper.
void refresh_port(zem_handle& handle, std::size_t location) {
  if (handle.portGiven[location]) return;
  handle.ports[location] = zem_get_port(handle.addresses[location]);
}

/// Deliberate: tries again when the name service repeats the old address, too; what failed a moment
/// ago may have been a restart. Pinned by EachMode.LooksTheNameUpAgainWhenALocationIsLost.
ConnectionPtr reach_by_name(zem_handle& handle, std::size_t location) {
  const std::string& name = handle.locations[location];
  if (dotted_address(name).has_value()) return nullptr;
  const std::optional<in_addr_t> address = address_by_name(name);
  if (!address.has_value()) return nullptr;
  handle.addresses[location] = *address;
  refresh_port(handle, location);
  return connect_location(handle, location);
}

}  // namespace

void resolve_locations(zem_handle& handle) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < location_count(handle); ++i) {
    const std::optional<in_addr_t> address = address_of(handle.locations[i]);
    if (!address.has_value()) continue;
    if (kept != i) handle.locations[kept] = std::move(handle.locations[i]);
    handle.addresses[kept++] = *address;
  }
  handle.location_count = static_cast<int>(kept);
}

void find_ports(zem_handle& handle, unsigned short port) {
  if (port == 0) {
    give_configured_ports(handle);
  } else {
    give_port(handle, 0, port);
  }
  for (std::size_t i = 0; i < location_count(handle); ++i) refresh_port(handle, i);
}

ConnectionPtr connect_location(const zem_handle& handle, std::size_t location) {
  if (handle.ports[location] == 0) return nullptr;
  return ConnectionPtr(
      eipc_create_remote_client(handle.addresses[location], handle.ports[location], &zem_errno));
}

ConnectionPtr reach_asking_first(zem_handle& handle, std::size_t location) {
  refresh_port(handle, location);
  ConnectionPtr connection = connect_location(handle, location);
  return connection != nullptr ? std::move(connection) : reach_by_name(handle, location);
}

ConnectionPtr reach_known_first(zem_handle& handle, std::size_t location) {
  if (ConnectionPtr connection = connect_location(handle, location)) return connection;
  if (!handle.portGiven[location]) {
    refresh_port(handle, location);
    if (ConnectionPtr connection = connect_location(handle, location)) return connection;
  }
  return reach_by_name(handle, location);
}

}  // namespace zem::agent
