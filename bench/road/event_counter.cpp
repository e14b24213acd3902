#include "bench/road/event_counter.h"

#include <algorithm>

#include "agent/wire_frame.h"

namespace zem::bench {

namespace {

constexpr std::size_t kLengthAt = 28;

std::size_t text_bytes(const std::array<char, agent::kFrameHeaderBytes>& header) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    bytes = bytes << 8 | static_cast<unsigned char>(header[kLengthAt + i]);
  }
  return bytes;
}

std::uint64_t occurrences(char byte, std::string_view bytes) {
  return static_cast<std::uint64_t>(std::ranges::count(bytes, byte));
}

}  // namespace

std::uint64_t EventCounter::count(std::string_view bytes) {
  if (form_ == EventForm::kFrames) return count_frames(bytes);
  keep(bytes);
  return occurrences(form_ == EventForm::kLines ? '\n' : '\x01', bytes);
}

void EventCounter::keep(std::string_view text) {
  if (record_ != nullptr) std::fwrite(text.data(), 1, text.size(), record_);
}
std::uint64_t EventCounter::count_frames(std::string_view bytes) {
  std::uint64_t events = 0;
  while (!bytes.empty()) {
    if (text_left_ == 0) {
      const std::size_t taken = std::min(header_.size() - header_bytes_, bytes.size());
      bytes.copy(header_.data() + header_bytes_, taken);
      bytes.remove_prefix(taken);
      header_bytes_ += taken;
      if (header_bytes_ < header_.size()) break;
      text_left_ = text_bytes(header_);
    }
    const std::size_t passed = std::min(text_left_, bytes.size());
    keep(bytes.substr(0, passed));
    bytes.remove_prefix(passed);
    text_left_ -= passed;
    if (text_left_ == 0) {
      header_bytes_ = 0;
      ++events;
    }
  }
  return events;
}

}  // namespace zem::bench
