#include "tools/fmt/near_word.h"

#include <cctype>
#include <numeric>
#include <vector>

namespace zem::fmt {
namespace {

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

}  // namespace

std::size_t distance(std::string_view from, std::string_view to) {
  constexpr std::size_t kWordBytesMax = 64;
  if (from.size() > kWordBytesMax) return from.size();
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (lower(from[i]) == lower(to[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace zem::fmt
