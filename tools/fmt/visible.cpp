#include "tools/fmt/visible.h"

#include "tools/fmt/plain_run.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

format::ByteMask control_bytes(const format::ByteBlock& block) {
  return (block.between('\0', '\x1f') & ~block.equal('\t')) | block.equal('\x7f');
}

}  // namespace

void append_visible(TextBuffer& out, std::string_view text) {
  while (!text.empty()) {
    const std::size_t shown = plain_run(text, control_bytes);
    out.append(text.substr(0, shown));
    text.remove_prefix(shown);
    if (text.empty()) break;
    out.append(util::format_text("\\x%02x", static_cast<unsigned>(text.front())));
    text.remove_prefix(1);
  }
}

std::string visible(std::string_view text) {
  TextBuffer shown;
  append_visible(shown, text);
  return std::string(shown.view());
}

}  // namespace zem::fmt
