#include "tests/support/plain_matcher.h"

#include <cctype>
#include <cstdlib>
#include <regex>

namespace zem::test {

namespace {

bool blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string blanks_of(const std::string& text) {
  std::string blanks;
  for (const char c : text) {
    if (!blank(c)) break;
    blanks += c;
  }
  return blanks;
}

std::string word_of(const std::string& text) {
  std::string word;
  for (const char c : text) {
    if (blank(c)) break;
    word += c;
  }
  return word;
}

enum class Kind { Literal, Blank, Word, Star, Plus, Time };

struct Piece {
  Kind kind;
  std::string literal;
  std::size_t width;
  std::string cut;  ///< what cuts the words of a variable; empty for nothing

  [[nodiscard]] bool variable() const { return kind != Kind::Literal && kind != Kind::Blank; }
};

Piece piece_of(const std::string& text) {
  static const std::regex variable("%([0-9]*)([st])([+*]?)");
  std::smatch part;
  if (blank(text[0])) {
    if (text[0] == ' ') return {Kind::Blank, "", 0, ""};
    return {Kind::Literal, text.substr(0, 1), 0, ""};
  }
  if (!std::regex_match(text, part, variable)) return {Kind::Literal, text, 0, ""};
  if (part[2] == "t") return {Kind::Time, "", 0, ""};
  const std::size_t width = std::strtoul(part[1].str().c_str(), nullptr, 10);
  if (part[3] == "*") return {Kind::Star, "", width, ""};
  if (part[3] == "+") return {Kind::Plus, "", width, ""};
  return {Kind::Word, "", width, ""};
}

/// A word is cut by the literal right behind it, unless it has a width; a run of words by the first
/// literal anywhere behind it.
void choose_cuts(std::vector<Piece>& pieces) {
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const bool run = pieces[i].kind == Kind::Star || pieces[i].kind == Kind::Plus;
    for (std::size_t k = i + 1; k < pieces.size(); ++k) {
      if (pieces[k].kind == Kind::Literal) {
        if (run || pieces[i].width == 0) pieces[i].cut = pieces[k].literal;
        break;
      }
      if (!run) break;
    }
  }
}

/// Takes a word off the head of `rest`; nothing when there is none.
std::string take_word(std::string& rest, const std::string& cut, std::size_t width) {
  std::string word = word_of(rest);
  if (!cut.empty() && word.find(cut) != std::string::npos) word.erase(word.find(cut));
  if (width > 0) word = word.size() < width ? "" : word.substr(0, width);
  rest.erase(0, word.size());
  return word;
}

std::string take_blanks(std::string& rest) {
  std::string blanks = blanks_of(rest);
  rest.erase(0, blanks.size());
  return blanks;
}

/// As many words as there are. Blanks in front of something that is no word stay.
std::string take_words(std::string& rest, const Piece& piece) {
  std::string words = take_word(rest, piece.cut, piece.width);
  while (!words.empty() && !blanks_of(rest).empty()) {
    std::string ahead = rest;
    take_blanks(ahead);
    const std::string word = take_word(ahead, piece.cut, piece.width);
    if (word.empty()) break;
    words += " " + word;
    rest = ahead;
  }
  return words;
}

std::optional<std::string> take_time(std::string& rest, const Piece& piece) {
  std::string value;
  for (int i = 0; i < 2; ++i) {
    const std::string word = take_word(rest, "", 0);
    if (word.empty() || take_blanks(rest).empty()) return std::nullopt;
    value += word + " ";
  }
  const std::string last = take_word(rest, piece.cut, 0);
  if (last.empty()) return std::nullopt;
  return value + last;
}

/// What the piece takes off the head of `rest`; nothing when it does not match there.
std::optional<std::string> take(std::string& rest, const Piece& piece) {
  std::string taken;
  switch (piece.kind) {
    case Kind::Literal:
      if (word_of(rest).empty() || word_of(rest).rfind(piece.literal, 0) != 0) return std::nullopt;
      rest.erase(0, piece.literal.size());
      return piece.literal;
    case Kind::Star:
      return take_words(rest, piece);
    case Kind::Plus:
      taken = take_words(rest, piece);
      break;
    case Kind::Time:
      return take_time(rest, piece);
    case Kind::Blank:
      taken = take_blanks(rest);
      break;
    case Kind::Word:
      taken = take_word(rest, piece.cut, piece.width);
      break;
  }
  if (taken.empty()) return std::nullopt;
  return taken;
}

}  // namespace

std::vector<std::string> plain_pieces(const std::string& format) {
  static const std::regex piece("\\s+|%[0-9]*[st][+*]?|%[0-9]*%?[^%\\s]*|[^%\\s]+");
  std::vector<std::string> pieces;
  for (std::sregex_iterator at(format.begin(), format.end(), piece), end; at != end; ++at) {
    pieces.push_back(at->str());
  }
  if (pieces.empty()) pieces.emplace_back();
  return pieces;
}

std::optional<std::vector<std::string>> plain_match(const std::string& format,
                                                    const std::string& message) {
  std::vector<Piece> pieces;
  for (const std::string& text : plain_pieces(format)) pieces.push_back(piece_of(text));
  choose_cuts(pieces);
  std::string rest = message;
  take_blanks(rest);
  std::vector<std::string> values;
  for (const Piece& piece : pieces) {
    const std::optional<std::string> taken = take(rest, piece);
    if (!taken) return std::nullopt;
    if (piece.variable()) values.push_back(*taken);
  }
  take_blanks(rest);
  if (!rest.empty()) return std::nullopt;
  return values;
}

}  // namespace zem::test
