#include "adapters/libzemad/printf_conversion.h"

#include <algorithm>

namespace zem::kernel {
namespace {

/// Takes the digits off `cursor`; none are 0, too many stop at the greatest number.
std::size_t take_number(std::string_view& cursor) {
  std::size_t number = 0;
  while (!cursor.empty() && cursor.front() >= '0' && cursor.front() <= '9') {
    const auto digit = static_cast<std::size_t>(cursor.front() - '0');
    number = std::min(number * 10 + digit, Conversion::kNumberMax);
    cursor.remove_prefix(1);
  }
  return number;
}

void take_flags(std::string_view& cursor, Conversion& conversion) {
  constexpr std::string_view kFlags = " #+-0";
  while (!cursor.empty() && kFlags.find(cursor.front()) != std::string_view::npos) {
    if (cursor.front() == '-') conversion.is_left_justified = true;
    if (cursor.front() == '0') conversion.fill = '0';
    cursor.remove_prefix(1);
  }
}

}  // namespace

void Conversion::append(std::string_view value, std::string& text) const {
  const std::string_view left = cut(value);
  const std::size_t count = fill_beside(left);
  if (!is_left_justified) text.append(count, fill);
  text.append(left);
  if (is_left_justified) text.append(count, fill);
}

Conversion take_conversion(std::string_view& cursor) {
  Conversion conversion;
  take_flags(cursor, conversion);
  conversion.width = take_number(cursor);
  if (cursor.starts_with('.')) {
    cursor.remove_prefix(1);
    conversion.precision = take_number(cursor);
  }
  conversion.is_string = cursor.starts_with('s');
  if (!cursor.empty()) cursor.remove_prefix(1);
  return conversion;
}

}  // namespace zem::kernel
