/// Which bytes of a text are characters, and which of them a terminal would obey.
#pragma once

#include <cstddef>
#include <string_view>

namespace zem::receiver {

/// Length of the well-formed UTF-8 sequence at the front of `text` (not empty); 0 when there is
/// none: a stray byte, an overlong form, a surrogate, a sequence cut short.
[[nodiscard]] std::size_t utf8_sequence_length(std::string_view text);

/// True for a well-formed sequence that is a control character: U+0000 to U+001F, U+007F to U+009F.
[[nodiscard]] bool is_control_sequence(std::string_view sequence);

}  // namespace zem::receiver
