#include "tools/fmt/text_marks.h"

#include <algorithm>

namespace zem::fmt {
namespace {

bool continues_character(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

}  // namespace

std::string printable(std::string_view text) {
  std::string shown(text);
  for (char& byte : shown) {
    const bool is_control = static_cast<unsigned char>(byte) < ' ' || byte == '\x7F';
    if (is_control && byte != '\t') byte = '?';
  }
  return shown;
}

std::string blanks_below(std::string_view text) {
  std::string blanks;
  for (const char byte : text) {
    if (!continues_character(byte)) blanks += byte == '\t' ? '\t' : ' ';
  }
  return blanks;
}

std::size_t width_of(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return !continues_character(byte); }));
}

void LabelRows::put(std::size_t column, std::string_view label) {
  const auto has_room = [column](const std::string& row) {
    return row.empty() || row.size() < column;
  };
  auto row = std::ranges::find_if(rows_, has_room);
  if (row == rows_.end()) row = rows_.emplace(rows_.end());
  row->resize(column, ' ');
  row->append(label);
}

}  // namespace zem::fmt
