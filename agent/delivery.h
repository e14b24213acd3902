/// How one event gets to a server: over the connection that a connection-oriented handle keeps
/// open, or over one of its own. What no location takes is the caller's to keep.
#pragma once

#include <string_view>

#include "agent/zem_handle.h"

namespace zem::agent {

/// Over the open connection, else over a new one to the first location that takes the event, which
/// then stays open. May wait for the retry interval. True when the event was sent; an empty event
/// counts as sent wherever there is a connection.
[[nodiscard]] bool deliver_connected(zem_handle& handle, std::string_view event);

/// Over a connection of its own to the first location that takes the event.
[[nodiscard]] bool deliver_connectionless(zem_handle& handle, std::string_view event);

/// Opens the connection of a connection-oriented handle to the first location that can be reached
/// with what is known; leaves it closed when none can.
void connect_first(zem_handle& handle);

/// Closes the open connection, if there is one.
void close_connection(zem_handle& handle);

}  // namespace zem::agent
