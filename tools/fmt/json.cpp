#include "tools/fmt/json.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "tools/fmt/plain_run.h"

namespace zem::fmt {
namespace {

using Byte = unsigned char;

/// The forms of a character of two bytes and more. The first byte fixes the length and, so that
/// nothing is written longer than needed, no surrogate and nothing beyond U+10FFFF, the second
/// byte's range.
struct Form {
  Byte first_low, first_high;
  Byte second_low, second_high;
  std::size_t length;
};
constexpr std::array kForms = {Form{0xC2, 0xDF, 0x80, 0xBF, 2}, Form{0xE0, 0xE0, 0xA0, 0xBF, 3},
                               Form{0xE1, 0xEC, 0x80, 0xBF, 3}, Form{0xED, 0xED, 0x80, 0x9F, 3},
                               Form{0xEE, 0xEF, 0x80, 0xBF, 3}, Form{0xF0, 0xF0, 0x90, 0xBF, 4},
                               Form{0xF1, 0xF3, 0x80, 0xBF, 4}, Form{0xF4, 0xF4, 0x80, 0x8F, 4}};

bool is_within(char c, Byte low, Byte high) {
  const auto byte = static_cast<Byte>(c);
  return byte >= low && byte <= high;
}

bool has_form(std::string_view text, const Form& form) {
  if (text.size() < form.length || !is_within(text[0], form.first_low, form.first_high)) {
    return false;
  }
  if (!is_within(text[1], form.second_low, form.second_high)) return false;
  return std::ranges::all_of(text.substr(2, form.length - 2),
                             [](char c) { return is_within(c, 0x80, 0xBF); });
}

/// Bytes of the character that `text` begins with; 0 when it begins with none.
std::size_t character_bytes(std::string_view text) {
  if (is_within(text[0], 0, 0x7F)) return 1;
  for (const Form& form : kForms) {
    if (has_form(text, form)) return form.length;
  }
  return 0;
}

void append_code(TextBuffer& out, std::string_view prefix, char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<Byte>(c);
  out.append(prefix);
  out.append(kDigits[byte >> 4U]);
  out.append(kDigits[byte & 0xFU]);
}

/// Those that do not stand for themselves.
format::ByteMask odd_bytes(const format::ByteBlock& block) {
  return (~block.between(' ', '~') & format::first_bytes(format::kBlockBytes)) | block.equal('"') |
         block.equal('\\');
}

void append_special(TextBuffer& out, char c) {
  switch (c) {
    case '"':
      out.append("\\\"");
      break;
    case '\\':
      out.append("\\\\");
      break;
    case '\n':
      out.append("\\n");
      break;
    case '\t':
      out.append("\\t");
      break;
    default:
      append_code(out, "\\u00", c);
  }
}

}  // namespace

void append_json(TextBuffer& out, std::string_view text) {
  out.append('"');
  while (!text.empty()) {
    const std::size_t plain = plain_run(text, odd_bytes);
    out.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::size_t bytes = character_bytes(text);
    if (bytes == 0) append_code(out, "\\udc", text[0]);
    if (bytes == 1) append_special(out, text[0]);
    if (bytes > 1) out.append(text.substr(0, bytes));
    text.remove_prefix(std::max<std::size_t>(bytes, 1));
  }
  out.append('"');
}

}  // namespace zem::fmt
