#include "agent/delivery.h"

#include <utility>

#include "agent/agent_comm.h"
#include "agent/agent_util.h"
#include "agent/locations.h"
#include "agent/peer_io.h"
#include "agent/sockobx.h"
#include "util/clock.h"

namespace zem::agent {
namespace {

using util::Clock;
using util::Milliseconds;
using util::Seconds;

/// A secondary location is left for location 0 after this many events.
constexpr int kEventsOnSecondary = 64;
constexpr Seconds kRetrySlice{5};

bool send_event(eipc_handle& connection, std::string_view event) {
  return eipc_send(&connection, event.data(), static_cast<int>(event.size()), 0, 0, &zem_errno) ==
         0;
}

void adopt(zem_handle& handle, std::size_t location, ConnectionPtr connection) {
  handle.ipc = connection.release();
  handle.current = static_cast<int>(location);
}

/// An event that is written to a connection which the peer has closed vanishes without an error.
/// Nothing was sent yet, so that the event goes to the next location at once, without a wait.
void close_if_peer_did(zem_handle& handle) {
  if (handle.ipc == nullptr) return;
  const int fd = handle.ipc->socket.get();
  discard_input(fd);
  if (has_peer_closed(fd)) close_connection(handle);
}

bool send_on_open_connection(zem_handle& handle, std::string_view event) {
  if (handle.current != 0 && handle.sentOnConnection >= kEventsOnSecondary) return false;
  if (!send_event(*handle.ipc, event)) return false;
  ++handle.sentOnConnection;
  return true;
}

/// Waits from now on for the retry interval, in slices; false when a pending reload or clean-up
/// ended the wait. The interval is read to the end of a slice: one second costs five.
bool wait_retry_interval(const zem_handle& handle) {
  auto& clock = util::current<Clock>();
  const Milliseconds ends = clock.now() + Seconds{common_agent_get_retry(&handle)};
  while (clock.now() < ends) {
    if (!clock.sleep(kRetrySlice)) return false;
  }
  return true;
}

/// Gives up the connection that failed, or that was healthy but not to location 0.
bool leave_connection(zem_handle& handle) {
  const bool waited = wait_retry_interval(handle);
  close_connection(handle);
  return waited;
}

bool deliver_on_new_connection(zem_handle& handle, std::string_view event) {
  for (std::size_t i = 0; i < location_count(handle); ++i) {
    ConnectionPtr connection = reach_asking_first(handle, i);
    if (connection == nullptr || !send_event(*connection, event)) continue;
    adopt(handle, i, std::move(connection));
    ++handle.sentOnConnection;
    return true;
  }
  return false;
}

}  // namespace

bool deliver_connected(zem_handle& handle, std::string_view event) {
  if (!event.empty()) close_if_peer_did(handle);
  if (handle.ipc != nullptr) {
    if (send_on_open_connection(handle, event)) return true;
    if (!leave_connection(handle)) return false;
  }
  return deliver_on_new_connection(handle, event);
}

bool deliver_connectionless(zem_handle& handle, std::string_view event) {
  for (std::size_t i = 0; i < location_count(handle); ++i) {
    const ConnectionPtr connection = reach_known_first(handle, i);
    if (connection == nullptr || !send_event(*connection, event)) continue;
    eipc_shutdown(connection.get());
    return true;
  }
  return false;
}

void connect_first(zem_handle& handle) {
  for (std::size_t i = 0; i < location_count(handle); ++i) {
    ConnectionPtr connection = connect_location(handle, i);
    if (connection == nullptr) continue;
    adopt(handle, i, std::move(connection));
    return;
  }
}

void close_connection(zem_handle& handle) {
  const ConnectionPtr connection(std::exchange(handle.ipc, nullptr));
  if (connection != nullptr) eipc_shutdown(connection.get());
  handle.current = -1;
  handle.sentOnConnection = 0;
}

}  // namespace zem::agent
