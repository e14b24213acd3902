/// How one event gets to a server: over the connection that a connection-oriented handle keeps
/// open, or over one of its own. What no location takes is the caller's to keep.
#pragma once

#include <cstddef>
#include <string_view>

#include "agent/zem_handle.h"

namespace zem::agent {

class Gathering;

/// Over the open connection, else over a new one to the first location that takes the event, which
/// then stays open. May wait for the retry interval. True when the event was sent; an empty event
/// counts as sent wherever there is a connection.
[[nodiscard]] bool deliver_connected(zem_handle& handle, std::string_view event);

/// Over the open connection, as many of the oldest events at once as it takes; how many have left.
/// 0 when there is no connection that can take any: deliver_connected knows what to do for the
/// oldest. Waits for one event at most, the last of those that left.
[[nodiscard]] std::size_t deliver_together(zem_handle& handle, const Gathering& gathering);

/// Over a connection of its own to the first location that takes the event.
[[nodiscard]] bool deliver_connectionless(zem_handle& handle, std::string_view event);

/// Opens the connection of a connection-oriented handle to the first location that can be reached
/// with what is known; leaves it closed when none can.
void connect_first(zem_handle& handle);

/// Closes the open connection, if there is one.
void close_connection(zem_handle& handle);

}  // namespace zem::agent
