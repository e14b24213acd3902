#include "agent/posting.h"

#include <cstdio>
#include <string>

#include "agent/agent_comm.h"
#include "agent/delivery.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "agent/file_blocks.h"

namespace zem::agent {
namespace {

bool deliver(zem_handle& handle, std::string_view event) {
  return handle.mode == kConnectionOriented ? deliver_connected(handle, event)
                                            : deliver_connectionless(handle, event);
}

bool write_line(const zem_handle& handle, std::string_view event) {
  return write_to_test_file(handle, std::string(event) + '\n');
}

}  // namespace

Outgoing outgoing(const zem_handle* handle, std::string_view event) {
  static std::string whole;
  const auto accepted = static_cast<int>(event.size());
  const bool is_flushed = handle != nullptr && handle->flushing;
  if (is_flushed || is_terminated(event)) return {event, accepted};
  const auto [head, terminator] = terminated(event);
  whole.assign(head).append(terminator);
  return {whole, accepted};
}

bool is_held_back(const zem_handle* handle, std::string_view text) {
  if (handle != nullptr && (handle->flushing || handle->unfiltered)) return false;
  return is_filtered(text);
}

int post(zem_handle& handle, const Outgoing& event) {
  if (!event.text.empty()) ZEMAD_no_connection = 0;
  if (handle.test_mode) return write_line(handle, event.text) ? event.accepted : keep(event);
  if (!deliver(handle, event.text)) return keep(event);
  if (!handle.flushing) zem_flush_events(&handle);
  return event.accepted;
}

int keep(const Outgoing& event) {
  if (!event.text.empty()) ZEMAD_no_connection = 1;
  return cache_event(event.text);
}

/// Past the stream's buffer: lines are one write, which a signal does not break off, and of lines
/// that do not fit no piece is left beside their cached copies.
bool write_to_test_file(const zem_handle& handle, std::string_view lines) {
  return append_to(::fileno(handle.test_stream), lines).ok();
}

}  // namespace zem::agent
