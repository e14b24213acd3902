/// A text of a log for people: control characters, which could rule their terminal, stand as
/// "\x1b". Tabs and bytes beyond ASCII stay.
#pragma once

#include <string>
#include <string_view>

#include "tools/fmt/text_buffer.h"

namespace zem::fmt {

/// True when the text is plain, without control characters: as then is any part of it.
bool append_visible(TextBuffer& out, std::string_view text);
[[nodiscard]] std::string visible(std::string_view text);

}  // namespace zem::fmt
