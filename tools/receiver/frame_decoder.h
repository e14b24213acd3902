/// Takes the byte stream of one connection apart into events. The bytes come from anybody: every
/// field of a header is checked as soon as it is there, and memory stays below one largest event.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace zem::receiver {

/// Why a stream is no stream of events.
enum class Violation : std::uint8_t {
  kNone,
  kMarker,       ///< a frame does not begin with its marker
  kReserved,     ///< a field that is always zero is not
  kTotalLength,  ///< the event is empty, or longer than this server allows
  kPartLength,   ///< the first part is not the whole event or its first 2000 bytes
};
[[nodiscard]] std::string_view text_of(Violation violation);

class FrameDecoder {
 public:
  using Sink = std::function<void(std::string_view event)>;

  /// Events of more than `event_bytes_max` bytes are a violation.
  explicit FrameDecoder(std::size_t event_bytes_max) : event_bytes_max_(event_bytes_max) {}

  /// Hands each event that is complete with `bytes` to `sink`; the text is valid during the call
  /// only. After a violation the stream can not be read on: do not feed again.
  [[nodiscard]] Violation feed(std::string_view bytes, const Sink& sink);

  /// True when a frame has begun and is not complete.
  [[nodiscard]] bool is_midway() const { return !pending_.empty(); }

 private:
  Violation take_complete(std::string_view& bytes, const Sink& sink) const;
  void keep(std::string_view bytes);

  std::size_t event_bytes_max_;
  std::vector<char> pending_;  ///< the frame that has begun
};

}  // namespace zem::receiver
