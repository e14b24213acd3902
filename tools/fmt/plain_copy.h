/// How much of a text stands for itself: what escapes texts copies that in one go, looking at it on
/// the way.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "adapters/logfile/common/matcher/byte_block.h"
#include "tools/fmt/text_buffer.h"

namespace zem::fmt {

/// Puts the bytes at the beginning of `text` that are not odd, and returns how many those are.
/// `odd_bytes` says of sixteen bytes which are. A text of less than that is looked at where it has
/// been put, the last sixteen bytes of a longer one overlap those before them.
template <class OddBytes>
std::size_t put_plain(TextCursor& out, std::string_view text, OddBytes odd_bytes) {
  const bool is_short = text.size() < format::kBlockBytes;
  if (is_short) text.copy(out.at(), text.size());
  const char* const from = is_short ? out.at() : text.data();
  const std::size_t last = is_short ? 0 : text.size() - format::kBlockBytes;
  for (std::size_t at = 0;; at = std::min(at + format::kBlockBytes, last)) {
    const format::ByteBlock block(from + at);
    block.store(out.at() + at);
    const format::ByteMask odd = odd_bytes(block);
    if (odd == 0 && at != last) continue;
    const std::size_t found = odd == 0 ? text.size() : at + format::first_in(odd);
    const std::size_t plain = std::min(found, text.size());
    out.skip(plain);
    return plain;
  }
}

}  // namespace zem::fmt
