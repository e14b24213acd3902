/// A frame is a header of 36 bytes and the event's text:
///
///      0  8  <START>>
///      8  4  a word of free meaning
///     12  8  zero
///     20  4  a word of free meaning
///     24  4  zero
///     28  4  length of the text, big-endian
///     32  4  length of the text's first part: all of it, at most 2000
///     36     the text
///
/// The first part is how the sender cuts its writes; on the stream the rest follows at once.
///
/// Bytes are read in place as long as they hold whole frames. Only a frame that has begun is
/// copied, so that a busy connection costs no copy and an idle one no memory.
#include "tools/receiver/frame_decoder.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zem::receiver {
namespace {

constexpr std::string_view kMarker = "<START>>";
constexpr std::size_t kHeaderBytes = 36;
constexpr std::size_t kFirstPartMax = 2000;
/// A connection between two frames holds on to no more than this.
constexpr std::size_t kIdleCapacity = 4096;

std::uint32_t big_endian_at(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (const char byte : bytes.substr(offset, 4)) {
    value = value << 8 | static_cast<unsigned char>(byte);
  }
  return value;
}

bool is_zero(std::string_view bytes) {
  return std::ranges::all_of(bytes, [](char byte) { return byte == '\0'; });
}

std::size_t event_bytes(std::string_view header) { return big_endian_at(header, 28); }

/// Judges what there is of a header.
Violation judge(std::string_view header, std::size_t event_bytes_max) {
  const std::size_t known = std::min(header.size(), kMarker.size());
  if (header.substr(0, known) != kMarker.substr(0, known)) return Violation::kMarker;
  if (header.size() < kHeaderBytes) return Violation::kNone;
  if (!is_zero(header.substr(12, 8)) || !is_zero(header.substr(24, 4))) return Violation::kReserved;
  const std::size_t total = event_bytes(header);
  if (total < 1 || total > event_bytes_max) return Violation::kTotalLength;
  const std::size_t part = big_endian_at(header, 32);
  return part == std::min(total, kFirstPartMax) ? Violation::kNone : Violation::kPartLength;
}

/// Bytes of the frame that begins here, as far as that is known.
std::size_t frame_bytes(std::string_view begun) {
  return begun.size() < kHeaderBytes ? kHeaderBytes : kHeaderBytes + event_bytes(begun);
}

}  // namespace

std::string_view text_of(Violation violation) {
  constexpr std::array<std::string_view, 5> kTexts = {
      "no violation", "no frame begins here", "a reserved field is not zero",
      "event length out of range", "wrong length of the first part"};
  return kTexts[static_cast<std::size_t>(violation)];
}

/// Takes whole frames off the front of `bytes`; what is left is the beginning of one.
Violation FrameDecoder::take_complete(std::string_view& bytes, const Sink& sink) const {
  while (!bytes.empty()) {
    const std::string_view header = bytes.substr(0, kHeaderBytes);
    if (const Violation found = judge(header, event_bytes_max_); found != Violation::kNone) {
      return found;
    }
    const std::size_t whole = frame_bytes(header);
    if (header.size() < kHeaderBytes || bytes.size() < whole) break;
    sink(bytes.substr(kHeaderBytes, whole - kHeaderBytes));
    bytes.remove_prefix(whole);
  }
  return Violation::kNone;
}

void FrameDecoder::keep(std::string_view bytes) {
  if (bytes.empty()) {
    pending_.clear();
    if (pending_.capacity() > kIdleCapacity) pending_.shrink_to_fit();
    return;
  }
  pending_.assign(bytes.begin(), bytes.end());
}

Violation FrameDecoder::feed(std::string_view bytes, const Sink& sink) {
  // First complete what has begun: its header, then its text, and nothing beyond it.
  while (!pending_.empty() && !bytes.empty()) {
    const std::string_view begun(pending_.data(), pending_.size());
    const std::size_t missing = frame_bytes(begun) - begun.size();
    const std::string_view next = bytes.substr(0, missing);
    pending_.reserve(frame_bytes(begun));
    pending_.insert(pending_.end(), next.begin(), next.end());
    bytes.remove_prefix(next.size());
    std::string_view whole(pending_.data(), pending_.size());
    if (const Violation found = take_complete(whole, sink); found != Violation::kNone) return found;
    if (whole.empty()) keep(whole);
  }
  if (!pending_.empty()) return Violation::kNone;
  const Violation found = take_complete(bytes, sink);
  if (found == Violation::kNone) keep(bytes);
  return found;
}

}  // namespace zem::receiver
