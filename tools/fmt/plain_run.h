/// How much of a text needs no second look: what escapes texts copies the rest in one go.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::fmt {

static_assert(std::endian::native == std::endian::little);

/// `Half` as the machine holds it at `at`.
template <class Half>
[[nodiscard]] std::uint64_t half_at(const char* at) {
  Half half = 0;
  std::memcpy(&half, at, sizeof half);
  return half;
}

/// `plain_run` of less than a block. The bytes go to the block in registers: a copy in memory costs
/// more than all the rest (`zemad_fmt match --format json`: a sixth of the whole).
template <class OddBytes>
[[nodiscard]] std::size_t short_plain_run(std::string_view text, OddBytes odd_bytes) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  std::uint64_t first = 0x6161'6161'6161'6161;  // "aaaaaaaa"
  std::uint64_t last = first;
  std::size_t half = text.size();
  if (half >= 8) {
    half = 8;
    first = half_at<std::uint64_t>(begin);
    last = half_at<std::uint64_t>(end - 8);
  } else if (half >= 4) {
    half = 4;
    first = half_at<std::uint32_t>(begin) | half_at<std::uint32_t>(end - 4) << 32U;
  } else {
    for (const char* at = end; at != begin;)
      first = first << 8U | static_cast<unsigned char>(*--at);
  }
  const format::ByteMask odd = odd_bytes(format::ByteBlock(first, last));
  if (odd == 0) return text.size();
  const std::size_t found = format::first_in(odd);
  return found < half ? found : text.size() - 2 * half + found;
}

/// Bytes at the beginning that are not odd. `odd_bytes` says of sixteen bytes which are; the letter
/// "a" is none of them.
template <class OddBytes>
[[nodiscard]] std::size_t plain_run(std::string_view text, OddBytes odd_bytes) {
  if (text.size() < format::kBlockBytes) return short_plain_run(text, odd_bytes);
  const std::size_t last = text.size() - format::kBlockBytes;
  for (std::size_t at = 0;; at = std::min(at + format::kBlockBytes, last)) {
    const format::ByteMask odd = odd_bytes(format::ByteBlock(text.data() + at));
    if (odd != 0) return at + format::first_in(odd);
    if (at == last) return text.size();
  }
}

}  // namespace zem::fmt
