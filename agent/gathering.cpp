#include "agent/gathering.h"

#include <algorithm>
#include <span>

#include "agent/agent_comm.h"
#include "agent/delivery.h"
#include "agent/evt_buffer.h"
#include "agent/peer_io.h"
#include "agent/wire_frame.h"
#include "util/signal_notes.h"

namespace zem::agent {
namespace {

/// Without filters the text does not matter; its terminated form is not put together then.
bool is_held_here(const zem_handle& handle, std::string_view text) {
  return is_held_back(&handle, has_send_filters() ? outgoing(&handle, text).text : text);
}

/// Events that no single connection carries, and those of a handle that is in any way unusual, go
/// one by one.
bool is_gatherable(const zem_handle& handle) {
  if (send_events == 0 || ZEMAD_no_connection != 0 || handle.flushing) return false;
  return handle.test_mode || handle.mode == kConnectionOriented;
}

/// Lets as many events leave as one call takes; 0 when the oldest is to be posted alone.
std::size_t post_together(zem_handle& handle, const Gathering& gathering) {
  ZEMAD_no_connection = 0;
  if (!handle.test_mode) return may_cache_hold_events() ? 0 : deliver_together(handle, gathering);
  const std::size_t count = gathering.count();
  return write_to_test_file(handle, gathering.bytes(count)) ? count : 0;
}

/// With a reload or clean-up due, a server that has just failed is not tried again for each of the
/// events behind: they go where they would go then.
bool is_hopeless() { return ZEMAD_no_connection != 0 && util::is_wait_unwelcome(); }

/// True when the result is that of an event which was sent.
bool post_alone(zem_handle& handle, const Outgoing& event) {
  return (is_hopeless() ? keep(event) : post(handle, event)) == event.accepted;
}

}  // namespace

bool Gathering::add(const Terminated& event, int accepted, Form form) {
  const std::size_t text_bytes = event.text.size() + event.terminator.size();
  const bool is_frame = form == Form::kFrames;
  if (size_ + text_bytes + (is_frame ? kFrameHeaderBytes : 1) > kBytesMax) return false;
  buffer_.resize(kBytesMax);
  if (is_frame) {
    write_frame_header(text_bytes, {}, std::as_writable_bytes(std::span(buffer_).subspan(size_)));
    size_ += kFrameHeaderBytes;
  }
  const std::size_t text_begin = size_;
  append(event.text);
  append(event.terminator);
  if (!is_frame) append("\n");
  events_.push_back({text_begin, text_bytes, size_, accepted, 0});
  return true;
}

void Gathering::append(std::string_view bytes) {
  bytes.copy(buffer_.data() + size_, bytes.size());
  size_ += bytes.size();
}

Outgoing Gathering::oldest() const {
  const Event& event = events_[first_];
  return {{buffer_.data() + event.text_begin, event.text_bytes}, event.accepted};
}

std::string_view Gathering::bytes(std::size_t count) const {
  if (count == 0) return {};
  return {buffer_.data() + begin(), events_[first_ + count - 1].end - begin()};
}

std::size_t Gathering::whole_events(std::size_t bytes) const {
  const auto events = std::span(events_).subspan(first_);
  const auto behind = std::ranges::upper_bound(events, begin() + bytes, {}, &Event::end);
  return static_cast<std::size_t>(behind - events.begin());
}

void Gathering::drop(std::size_t count) {
  first_ += count;
  if (!empty()) return;
  size_ = 0;
  events_.clear();
  first_ = 0;
}

Gathered gather(const zem_handle& handle, Gathering& gathering, std::string_view text) {
  if (!is_gatherable(handle)) return Gathered::kNotNow;
  if (is_held_here(handle, text)) return Gathered::kHeldBack;
  const auto form = handle.test_mode ? Gathering::Form::kLines : Gathering::Form::kFrames;
  const auto accepted = static_cast<int>(text.size());
  return gathering.add(terminated(text), accepted, form) ? Gathered::kYes : Gathered::kNotNow;
}

void post_gathered(zem_handle& handle, Gathering& gathering,
                   const std::function<void(const PostedAlone&)>& on_posted) {
  renew_grace();  // one for all
  while (!gathering.empty()) {
    const std::size_t sent = is_hopeless() ? 0 : post_together(handle, gathering);
    if (sent > 0) {
      gathering.drop(sent);
      continue;
    }
    const PostedAlone posted{post_alone(handle, gathering.oldest()), gathering.passes()};
    gathering.drop(1);
    on_posted(posted);
  }
}

}  // namespace zem::agent
