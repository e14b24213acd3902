#include "adapters/logfile/common/matcher/captures.h"

#include <algorithm>

namespace zem::format {

void Captures::assign(const char* text, std::span<const Span> parts) {
  winner_ = nullptr;
  text_ = text;
  count_ = parts.size();
  std::ranges::copy(parts, parts_.begin());
  made_ = 0;
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
