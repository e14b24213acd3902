/// How much of a text needs no second look: what escapes texts copies the rest in one go.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::fmt {

/// Bytes at the beginning that are not odd. `odd_bytes` says of sixteen bytes which are; the letter
/// "a" is none of them.
template <class OddBytes>
[[nodiscard]] std::size_t plain_run(std::string_view text, OddBytes odd_bytes) {
  std::size_t done = 0;
  for (; text.size() - done >= format::kBlockBytes; done += format::kBlockBytes) {
    const format::ByteMask odd = odd_bytes(format::ByteBlock(text.data() + done));
    if (odd != 0) return done + format::first_in(odd);
  }
  std::array<char, format::kBlockBytes> rest{};
  rest.fill('a');
  std::ranges::copy(text.substr(done), rest.begin());
  const format::ByteMask odd = odd_bytes(format::ByteBlock(rest.data()));
  return odd == 0 ? text.size() : done + format::first_in(odd);
}

}  // namespace zem::fmt
