/// Quoting in event texts: which texts need it, and how they look then.
#pragma once

#include <string>
#include <string_view>

namespace zem::kernel {

/// True for the empty text, and for one with a control character, a blank or any of
/// ! " # $ % & ' ( ) , : ; = { } in it. Bytes from 128 on never need quotes.
[[nodiscard]] bool needs_quotes(std::string_view text);

/// Replaces `out` by `text` between single quotes, with every single quote in it doubled:
/// it's (x) becomes 'it''s (x)'.
void quote(std::string_view text, std::string& out);

/// Quotes the last part of `text`, from `begin` on, in place, when it needs quotes.
void quote_from(std::string& text, std::size_t begin);

}  // namespace zem::kernel
