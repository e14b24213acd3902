/// Where the servers of a handle are: addresses from the name service, ports from the caller, the
/// configuration or the hosts' port mappers, and the ways to reach one location again after it was
/// lost. The locations of a handle keep their order; all look-ups may block.
#pragma once

#include "agent/sockobx.h"
#include "agent/zem_handle.h"

namespace zem::agent {

/// Finds the address of every location. Those without one are dropped, the others move up.
void resolve_locations(zem_handle& handle);

/// Finds the port of every location. A non-zero `port` (host byte order) is location 0's, else
/// field i of ServerPort is location i's; whoever is left without one is asked of the port mapper.
/// Call after resolve_locations: fields belong to positions, not to the names written beside them.
void find_ports(zem_handle& handle, unsigned short port);

/// Connects with what is known of the location; null without a port or when it can not be reached,
/// and `zem_errno` says why then.
[[nodiscard]] ConnectionPtr connect_location(const zem_handle& handle, std::size_t location);

/// As a connection-oriented handle goes about it: asks for the port anew, connects, and if that
/// fails looks the name up again and tries once more.
[[nodiscard]] ConnectionPtr reach_asking_first(zem_handle& handle, std::size_t location);

/// As a connectionless handle goes about it: tries what is known, then a new port, then a new
/// address.
[[nodiscard]] ConnectionPtr reach_known_first(zem_handle& handle, std::size_t location);

/// Locations in use.
[[nodiscard]] inline std::size_t location_count(const zem_handle& handle) {
  return static_cast<std::size_t>(handle.location_count);
}

}  // namespace zem::agent
