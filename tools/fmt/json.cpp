#include "tools/fmt/json.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "tools/fmt/plain_copy.h"

namespace zem::fmt {
namespace {

using Byte = unsigned char;

constexpr std::size_t kByteBytesMax = 6;  ///< of a byte, escaped

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

void put_code(TextCursor& out, std::string_view prefix, char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<Byte>(c);
  out.put(prefix);
  out.put(kDigits[byte >> 4U]);
  out.put(kDigits[byte & 0xFU]);
}

/// Those that do not stand for themselves.
format::ByteMask odd_bytes(const format::ByteBlock& block) {
  return (~block.between(' ', '~') & format::first_bytes(format::kBlockBytes)) | block.equal('"') |
         block.equal('\\');
}

void put_special(TextCursor& out, char c) {
  switch (c) {
    case '"':
      out.put("\\\"");
      break;
    case '\\':
      out.put("\\\\");
      break;
    case '\n':
      out.put("\\n");
      break;
    case '\t':
      out.put("\\t");
      break;
    default:
      put_code(out, "\\u00", c);
  }
}

/// Puts the first character of `text`, and returns how many bytes it has.
std::size_t put_odd(TextCursor& out, std::string_view text) {
  const std::size_t bytes = character_bytes(text);
  if (bytes == 0) put_code(out, "\\udc", text[0]);
  if (bytes == 1) put_special(out, text[0]);
  if (bytes > 1) out.put(text.substr(0, bytes));
  return std::max<std::size_t>(bytes, 1);
}

}  // namespace

bool append_escaped(TextBuffer& out, std::string_view text) {
  TextCursor cursor = out.room(kByteBytesMax * text.size());
  std::size_t done = put_plain(cursor, text, odd_bytes);
  const bool is_plain = done == text.size();
  while (done < text.size()) {
    done += put_odd(cursor, text.substr(done));
    done += put_plain(cursor, text.substr(done), odd_bytes);
  }
  out.end_at(cursor);
  return is_plain;
}

bool append_json(TextBuffer& out, std::string_view text) {
  out.append('"');
  const bool is_plain = append_escaped(out, text);
  out.append('"');
  return is_plain;
}

}  // namespace zem::fmt
