/// Small text helpers that several rooms share.
#pragma once

#include <string>
#include <string_view>

namespace zem::util {

/// atoi(3) with a defined result for every text: leading blanks, a sign, digits; anything behind
/// them is ignored; no digits give 0; values beyond int saturate.
[[nodiscard]] int saturating_atoi(std::string_view text) noexcept;

/// printf into a string of whatever length it takes.
[[nodiscard]] std::string format_text(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

}  // namespace zem::util
