/// The cache file: events that no server took, oldest first, each ending in its terminator.
#pragma once

#include "agent/zem_handle.h"

/// Bytes cached; 0 when the cache filters held everything back, -1 on failure or when caching is
/// off, -2 when the file could not be shrunk. A null path is the configured one.
int zem_buffer_event(const char* text);
int zem_buffer_event_to_file(const char* text, const char* path);
/// Re-sends the cache; the number of events that were posted, or the errno when there is no file.
int zem_flush_events(zem_handle* handle);
int zem_flush_events_from_file(zem_handle* handle, const char* path);
/// The file's size, -1 when it can not be opened; hands the open descriptor back through `fd` when
/// that is given.
long zem_event_buffer_size(zem_handle* handle, const char* path, int* fd);
