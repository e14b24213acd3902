#include "agent/delivery.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "agent/agent_comm.h"
#include "agent/agent_util.h"
#include "agent/gathering.h"
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
  if (handle.ipc == nullptr || handle.ipc->is_broken) return;
  if (is_deserted(handle.ipc->socket.get())) close_connection(handle);
}

/// How many more events the open connection may carry.
std::size_t events_allowed(const zem_handle& handle) {
  if (handle.ipc == nullptr || handle.ipc->is_broken) return 0;
  if (handle.current == 0) return std::numeric_limits<std::size_t>::max();
  return static_cast<std::size_t>(std::max(kEventsOnSecondary - handle.sentOnConnection, 0));
}

/// Stops at the greatest number, since a connection may stay open for years. Only the first 64 are
/// ever asked for.
void count_sent(zem_handle& handle, std::size_t events) {
  const auto room =
      static_cast<std::size_t>(std::numeric_limits<int>::max() - handle.sentOnConnection);
  handle.sentOnConnection += static_cast<int>(std::min(events, room));
}

bool send_on_open_connection(zem_handle& handle, std::string_view event) {
  if (events_allowed(handle) == 0 || !send_event(*handle.ipc, event)) return false;
  count_sent(handle, 1);
  return true;
}

/// One call, and the rest of the event that it may have cut in two; how many have left whole.
std::size_t send_at_once(eipc_handle& connection, const Gathering& gathering, std::size_t count) {
  const std::size_t taken = offer_messages(connection, gathering.bytes(count));
  const std::size_t whole = gathering.whole_events(taken);
  if (gathering.bytes(whole).size() == taken) return whole;
  if (finish_message(connection, gathering.bytes(whole + 1).substr(taken))) return whole + 1;
  zem_errno = kServerUnreachable;
  return whole;
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
    count_sent(handle, 1);
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

std::size_t deliver_together(zem_handle& handle, const Gathering& gathering) {
  close_if_peer_did(handle);
  const std::size_t count = std::min(events_allowed(handle), gathering.count());
  if (count == 0) return 0;
  const std::size_t sent = send_at_once(*handle.ipc, gathering, count);
  count_sent(handle, sent);
  return sent;
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
