#include "adapters/logfile/common/matcher/captures.h"

#include <algorithm>
#include <bit>

#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::format {

namespace {

/// The first ' ' that another follows; `end` when there is none. The last character is no blank.
char* find_run(char* at, char* end) {
  for (; at < end; at += kBlockBytes) {
    const ByteMask runs = ByteBlock(at).equal(' ') & ByteBlock(at + 1).equal(' ');
    if (runs != 0) return std::min(at + first_in(runs), end);
  }
  return end;
}

}  // namespace

void Captures::fold() {
  for (std::uint64_t runs = runs_; runs != 0; runs &= runs - 1) {
    const auto k = static_cast<std::size_t>(std::countr_zero(runs));
    if (k >= count_) break;
    Span& part = parts_[k];
    char* const begin = text_ + part.begin;
    char* const end = begin + part.length;
    char* const folded =
        std::unique(find_run(begin, end), end, [](char a, char b) { return a == ' ' && b == ' '; });
    part.length = static_cast<std::uint32_t>(folded - begin);
  }
}

const tvStrobj& Captures::string(std::size_t k) const {
  if (strings_.empty()) strings_.assign(kMax, "");
  tvStrobj& value = strings_[k];
  const std::uint64_t bit = std::uint64_t{1} << k;
  if ((made_ & bit) == 0) {
    made_ |= bit;
    value.setString("");  // keeps the buffer, unless somebody else still reads it
    value.append(view(k));
  }
  return value;
}

}  // namespace zem::format
