/// Small helpers for what the tool says.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zem::fmt {

/// The text in double quotes; of a long one its beginning.
[[nodiscard]] std::string quoted(std::string_view text);

/// "no word", "1 word", "2 words".
[[nodiscard]] std::string counted(std::size_t count, std::string_view noun);

}  // namespace zem::fmt
