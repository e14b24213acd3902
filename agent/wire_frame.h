/// The framed message that carries one event to the server: the layout of its 36-byte header, and
/// nothing about sockets.
///
/// | offset | size | content                                     |
/// |--------|------|---------------------------------------------|
/// |      0 |    8 | `<START>>`                                  |
/// |      8 |    4 | word1                                       |
/// |     12 |    8 | zero                                        |
/// |     20 |    4 | word2                                       |
/// |     24 |    4 | zero                                        |
/// |     28 |    4 | length of the whole text                    |
/// |     32 |    4 | length of the text in this message, <= 2000 |
/// |     36 |      | the first bytes of the text                 |
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zem::agent {

inline constexpr std::size_t kFrameHeaderBytes = 36;
inline constexpr std::size_t kFirstPartBytesMax = 2000;
inline constexpr std::size_t kFrameBytesMax = kFrameHeaderBytes + kFirstPartBytesMax;

/// The header's two words of free meaning; events leave both zero.
struct FrameWords {
  std::uint32_t word1 = 0;
  std::uint32_t word2 = 0;
};

/// Writes the header of a frame whose text has `text_bytes` bytes into `out`, which has room for
/// it.
void write_frame_header(std::size_t text_bytes, FrameWords words, std::span<std::byte> out);
/// Writes one event frame into `out`: a 36-byte header, then at most 2000 bytes of `text`.
/// Integers are big-endian. What is left of `text` is the caller's to send, unframed, right after.
/// `out` has room for 36 + min(text.size(), 2000) bytes; returns the bytes written. Cannot fail.
std::size_t write_frame(std::string_view text, FrameWords words, std::span<std::byte> out);

}  // namespace zem::agent
