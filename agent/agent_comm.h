/// The event client's face: a connection handle with up to eight server locations, fail-over
/// between them, and the cache behind them.
#pragma once

#include "agent/zem_handle.h"

extern int zem_errno;            ///< last error of the client: 38, 48 or 67
extern int ZEMAD_no_connection;  ///< 1 since an event had to be cached, 0 since one was sent
extern int send_events;          ///< sending enabled

/// Null on failure, with `zem_errno` 48. `reserved` is ignored; a mode of 2 is read from the
/// configuration. Released with zem_destroy_handle.
zem_handle* zem_create_handle(const char* location, unsigned short port, int reserved, int mode);
/// Posts one event: its length when it was sent or written, 0 when a filter held it back, else what
/// zem_buffer_event returns. Without a handle a temporary connectionless one is used.
int zem_put_event(zem_handle* handle, const char* text);
int zem_put_event_to_location(zem_handle* handle, const char* text);
void zem_destroy_handle(zem_handle* handle);
/// True when the handle is connectionless or has an open connection.
int zem_connection_status(const zem_handle* handle);
int zem_toggle_send();
/// Asks the port mapper of the host for the server's port: network order, or 0 with `zem_errno` 38.
in_port_t zem_get_port(in_addr_t address);
int zem_agent_init(const char* path);
int zem_method_agent_init(const char* path);
