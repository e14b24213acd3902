/// Texts as JSON strings, whatever bytes they hold.
#pragma once

#include <string_view>

#include "tools/fmt/text_buffer.h"

namespace zem::fmt {

/// Appends `text` with its quotes. UTF-8 stays as it is. A byte that is no part of valid UTF-8, say
/// 0xE9, is written as the lone surrogate \udce9: no valid text decodes to one, so that the bytes
/// can be told back (in Python: text.encode("utf-8", "surrogateescape")).
/// True when the text is plain, ASCII that stands for itself: as then is any part of it.
bool append_json(TextBuffer& out, std::string_view text);
/// The same without its quotes.
bool append_escaped(TextBuffer& out, std::string_view text);

}  // namespace zem::fmt
