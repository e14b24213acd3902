/// Quoting in event texts: which texts need it, and how they look then.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zem::kernel {

/// True for the empty text, and for one with a control character, a blank or any of
/// ! " # $ % & ' ( ) , : ; = { } in it. Bytes from 128 on never need quotes.
[[nodiscard]] bool needs_quotes(std::string_view text);

/// Replaces `out` by `text` between single quotes, with every single quote in it doubled:
/// it's (x) becomes 'it''s (x)'.
void quote(std::string_view text, std::string& out);

/// The most bytes that a text of `bytes` bytes takes with its quotes.
[[nodiscard]] constexpr std::size_t quoted_bytes_max(std::size_t bytes) { return 2 * bytes + 2; }
/// Writes `text` at `to`, in quotes when it needs them, and returns the end. There is room for
/// quoted_bytes_max bytes, and what stands there behind the end may be changed, too.
[[nodiscard]] char* write_quoted(std::string_view text, char* to);

}  // namespace zem::kernel
