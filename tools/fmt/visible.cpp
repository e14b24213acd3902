#include "tools/fmt/visible.h"

#include "tools/fmt/plain_copy.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

constexpr std::size_t kByteBytesMax = 4;  ///< of a byte that is shown as its code

format::ByteMask control_bytes(const format::ByteBlock& block) {
  return (block.between('\0', '\x1f') & ~block.equal('\t')) | block.equal('\x7f');
}

}  // namespace

bool append_visible(TextBuffer& out, std::string_view text) {
  TextCursor cursor = out.room(kByteBytesMax * text.size());
  std::size_t done = put_plain(cursor, text, control_bytes);
  const bool is_plain = done == text.size();
  while (done < text.size()) {
    cursor.put(util::format_text("\\x%02x", static_cast<unsigned>(text[done++])));
    done += put_plain(cursor, text.substr(done), control_bytes);
  }
  out.end_at(cursor);
  return is_plain;
}

std::string visible(std::string_view text) {
  TextBuffer shown;
  append_visible(shown, text);
  return std::string(shown.view());
}

}  // namespace zem::fmt
