#include "agent/wire_frame.h"

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
  for (int shift = 24; shift >= 0; shift -= 8) *at++ = static_cast<std::byte>(value >> shift);
}

}  // namespace

std::size_t write_frame(std::string_view text, FrameWords words, std::span<std::byte> out) {
  const std::size_t part = std::min(text.size(), kFirstPartBytesMax);
  util::expect(out.size() >= kFrameHeaderBytes + part, "a frame has room for its header and part");
  std::ranges::fill(out.first(kFrameHeaderBytes), std::byte{0});
  std::memcpy(out.data(), kMarker.data(), kMarker.size());
  put_big_endian(words.word1, &out[kWord1At]);
  put_big_endian(words.word2, &out[kWord2At]);
  put_big_endian(static_cast<std::uint32_t>(text.size()), &out[kTotalLengthAt]);
  put_big_endian(static_cast<std::uint32_t>(part), &out[kPartLengthAt]);
  std::ranges::copy(std::as_bytes(std::span(text.substr(0, part))),
                    out.begin() + kFrameHeaderBytes);
  return kFrameHeaderBytes + part;
}

}  // namespace zem::agent
