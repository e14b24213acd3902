#include "agent/wire_frame.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>

#include "util/expect.h"

namespace zem::agent {
namespace {

constexpr std::string_view kMarker = "<START>>";
constexpr std::size_t kWord1At = 8;
constexpr std::size_t kWord2At = 20;
constexpr std::size_t kTotalLengthAt = 28;
constexpr std::size_t kPartLengthAt = 32;

void put_big_endian(std::uint32_t value, std::byte* at) {
  const std::uint32_t bytes = ::htonl(value);
  std::memcpy(at, &bytes, sizeof bytes);
}

std::size_t first_part_bytes(std::size_t text_bytes) {
  return std::min(text_bytes, kFirstPartBytesMax);
}

}  // namespace

void write_frame_header(std::size_t text_bytes, FrameWords words, std::span<std::byte> out) {
  util::expect(out.size() >= kFrameHeaderBytes, "there is room for a frame's header");
  std::byte* const at = out.data();
  std::memset(at, 0, kFrameHeaderBytes);
  std::memcpy(at, kMarker.data(), kMarker.size());
  put_big_endian(words.word1, at + kWord1At);
  put_big_endian(words.word2, at + kWord2At);
  put_big_endian(static_cast<std::uint32_t>(text_bytes), at + kTotalLengthAt);
  put_big_endian(static_cast<std::uint32_t>(first_part_bytes(text_bytes)), at + kPartLengthAt);
}

std::size_t write_frame(std::string_view text, FrameWords words, std::span<std::byte> out) {
  const std::size_t part = first_part_bytes(text.size());
  util::expect(out.size() >= kFrameHeaderBytes + part, "a frame has room for its header and part");
  write_frame_header(text.size(), words, out);
  std::ranges::copy(std::as_bytes(std::span(text.substr(0, part))),
                    out.begin() + kFrameHeaderBytes);
  return kFrameHeaderBytes + part;
}

}  // namespace zem::agent
