#include "util/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace zem::util {
namespace {

using IntLimits = std::numeric_limits<int>;

bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

}  // namespace

int saturating_atoi(std::string_view text) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool is_negative = text.starts_with('-');
  if (is_negative || text.starts_with('+')) text.remove_prefix(1);

  // One beyond the largest magnitude is kept, so that the smallest int is reached too.
  constexpr std::int64_t kMagnitudeMax = std::int64_t{IntLimits::max()} + 1;
  std::int64_t magnitude = 0;
  for (const char c : text) {
    if (!is_digit(c)) break;
    magnitude = std::min(magnitude * 10 + (c - '0'), kMagnitudeMax);
  }
  const std::int64_t value = is_negative ? -magnitude : magnitude;
  return static_cast<int>(std::min<std::int64_t>(value, IntLimits::max()));
}

std::string format_text(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list args_again;
  va_copy(args_again, args);
  const int length = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);

  std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, args_again);
  va_end(args_again);
  return text;
}

}  // namespace zem::util
