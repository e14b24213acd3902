#include "tests/support/random_formats.h"

#include "tests/support/plain_matcher.h"

namespace zem::test {

namespace {

constexpr const char* kPieces[] = {"%s",  "%s",   "%s",   "%s*",  "%s+",  "%t", " ",
                                   " ",   " ",    " ",    "  ",   "\t",   "a",  "ab",
                                   "b:",  "[",    "]: ",  "abc",  "%d",   "%",  "%2s",
                                   "%0s", "%3s*", "%2s+", "\xe9", "a b ", ": ", "]x"};
constexpr const char* kWords[] = {
    "a",  "b", "ab:",  "ba]",  "aab",      "b[a]:", "abba",
    "ab", ":", "\xe9", "abc[", "\x01\xff", "]x",    "aaaaaaaaaaaaaaaaaaab"};
constexpr const char* kBlanks[] = {" ", " ", " ", "  ", "  ", "    ", "\t", " \t", "\v\f"};
constexpr const char* kEnds[] = {"", "", "\n", " ", "\r\n", " \n \t"};
constexpr const char* kBits[] = {"a", "b", ":", "[", "]", " ", "%", "\t", "\xe9", "c", " a"};

}  // namespace

std::string RandomFormats::format() {
  std::string text;
  for (std::size_t pieces = 1 + pick(7); pieces > 0; --pieces) text += one_of(kPieces);
  return text;
}

std::vector<std::string> RandomFormats::formats(std::size_t count) {
  std::vector<std::string> all;
  while (all.size() < count) {
    std::string next;
    if (!all.empty() && pick(4) != 0) next = all[pick(all.size())];
    if (pick(8) != 0) next = next.substr(0, pick(next.size() + 1)) + format();
    all.push_back(next);
  }
  return all;
}

std::string RandomFormats::words(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += one_of(kBlanks);
    text += one_of(kWords);
  }
  return text;
}

/// Something that the piece may well match.
std::string RandomFormats::filling(const std::string& piece) {
  if (piece.empty()) return "";
  if (piece[0] == ' ') return one_of(kBlanks);
  if (piece[0] != '%' || piece.size() == 1 || piece == "%d") return piece;
  if (piece.ends_with('t')) return words(3);
  if (piece.ends_with('*')) return words(pick(4));
  return words(piece.ends_with('+') ? 1 + pick(3) : 1);
}

void RandomFormats::change(std::string& text) {
  const std::size_t at = pick(text.size() + 1);
  if (pick(2) == 0) {
    text.insert(at, one_of(kBits));
  } else if (at < text.size()) {
    text.erase(at, 1);
  }
}

std::string RandomFormats::message(const std::string& format) {
  std::string text = pick(4) == 0 ? one_of(kBlanks) : "";
  for (const std::string& piece : plain_pieces(format)) text += filling(piece);
  text += one_of(kEnds);
  for (std::size_t changes = pick(3); changes > 0; --changes) change(text);
  if (pick(50) == 0) text.insert(pick(text.size() + 1), 1, '\0');
  if (pick(100) == 0) text.clear();
  return text;
}

}  // namespace zem::test
