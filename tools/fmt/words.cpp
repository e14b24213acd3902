#include "tools/fmt/words.h"

namespace zem::fmt {

std::string quoted(std::string_view text) {
  constexpr std::size_t kShownBytesMax = 40;
  std::string shown(1, '"');
  shown.append(text.substr(0, kShownBytesMax));
  if (text.size() > kShownBytesMax) shown += "...";
  shown += '"';
  return shown;
}

std::string counted(std::size_t count, std::string_view noun) {
  std::string shown = count == 0 ? "no" : std::to_string(count);
  shown.append(1, ' ').append(noun);
  if (count > 1) shown += 's';
  return shown;
}

}  // namespace zem::fmt
