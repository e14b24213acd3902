/// One event on its way out, step by step: what zem_put_event does once there is a handle to do it
/// with, for it and for events that were gathered.
#pragma once

#include <string_view>

#include "agent/zem_handle.h"

namespace zem::agent {

inline constexpr int kConnectionOriented = 1;  ///< a mode of zem_handle

/// The event text as it goes out, and what its caller is told when it has: the length of his own.
struct Outgoing {
  std::string_view text;
  int accepted = 0;
};

/// The event with its terminator; its text is `event` itself or good until the next call. What
/// comes from the cache has its terminator: the text of a flush (see zem_handle) is left alone, and
/// so is that of the event which has set it off.
[[nodiscard]] Outgoing outgoing(const zem_handle* handle, std::string_view event);

/// True when a filter holds the event back. Events that are re-sent passed the filters when they
/// were new. No handle is one that filters.
[[nodiscard]] bool is_held_back(const zem_handle* handle, std::string_view text);

/// To the test file or the first location that takes it, or into the cache when none does; the
/// result of zem_put_event. A text that is not empty clears ZEMAD_no_connection first.
[[nodiscard]] int post(zem_handle& handle, const Outgoing& event);
/// Into the cache, for want of a server; the result of zem_put_event.
[[nodiscard]] int keep(const Outgoing& event);

/// Appends lines to the test file, all or, when it returns false, none.
[[nodiscard]] bool write_to_test_file(const zem_handle& handle, std::string_view lines);

}  // namespace zem::agent
