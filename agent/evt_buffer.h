/// The cache file: events that no server took, oldest first, each ending in its terminator. Results
/// are return values; the one message is the notice on standard error. Memory exhaustion ends the
/// process.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/zem_handle.h"

/// Appends one event to the configured file. A byte 0x01 before its last is written as a blank, so
/// that no event's text can end it and begin another. Results as below.
int zem_buffer_event(const char* text);
/// Appends a text of any number of events. Bytes cached; 0 when the cache filters held everything
/// back, -1 on failure or when caching is off, -2 when the file could not be shrunk. A null path is
/// the configured one.
int zem_buffer_event_to_file(const char* text, const char* path);
/// Re-sends the cache; the number of events that were posted, or the errno when there is no file.
int zem_flush_events(zem_handle* handle);
int zem_flush_events_from_file(zem_handle* handle, const char* path);
/// The file's size, -1 when it can not be opened; hands the open descriptor back through `fd` when
/// that is given.
long zem_event_buffer_size(zem_handle* handle, const char* path, int* fd);
/// The events of `text` that the cache filters let pass; nothing when they held all back. A text
/// without any 0x01 byte passes whole.
std::optional<std::string> filter_events(std::string_view text);
/// Removes the first `n` bytes of the file; 0, or -1 on failure.
int trunc_at_top(const char* path, long n);
/// Makes every missing directory of `dir`; 0, or -1 when one can not be made or is a file.
int MkDirR(const char* dir);
/// Releases memory of util/heap.h; null is allowed.
void zem_free_func(void* memory);

namespace zem::agent {

/// zem_buffer_event.
int cache_event(std::string_view event);
/// False when a flush of the configured file would find nothing to send: it is missing, empty, or
/// no file. One system call.
[[nodiscard]] bool may_cache_hold_events();

}  // namespace zem::agent
