// Bytes fall into four classes: blanks, the newline, six separators, and word bytes, which are all
// others. The class of the next byte decides which rule can apply, and each rule takes the longest
// text that fits it. What follows from that, by example:
//
//   /* note */      a comment: the run of word bytes "/*" ends at the blank
//   /*note*/        a word: the run of word bytes is longer than "/*"
//   // note         a comment that takes its newline along, on every kind of line: the line goes on
//   http://x        a word: the longest run starts at "h"
//   %s+x            on the format line the specifier "%s+" and the word "x"; %d are two words
#include "adapters/logfile/common/format_scanner.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zem::format {

namespace {

enum class ByteClass : std::uint8_t { Word, Blank, Newline, Separator };

constexpr std::array<ByteClass, 256> kByteClasses = [] {
  std::array<ByteClass, 256> classes{};
  for (const unsigned char byte : {' ', '\t', '\v', '\f'}) classes[byte] = ByteClass::Blank;
  for (const unsigned char byte : {'"', '%', '(', ')', ',', '\\'}) {
    classes[byte] = ByteClass::Separator;
  }
  classes['\n'] = ByteClass::Newline;
  return classes;
}();

ByteClass class_of(char byte) { return kByteClasses[static_cast<unsigned char>(byte)]; }

/// Length of the run of bytes of one class at the start of `text`.
std::size_t run_of(ByteClass wanted, std::string_view text) {
  const auto* const end =
      std::ranges::find_if(text, [wanted](char byte) { return class_of(byte) != wanted; });
  return static_cast<std::size_t>(end - text.begin());
}

/// Length of "%s", "%t", "%s+" or "%s*" at the start of `text`; 0 when it starts otherwise.
std::size_t specifier_length(std::string_view text) {
  if (text.starts_with("%s+") || text.starts_with("%s*")) return 3;
  return text.starts_with("%s") || text.starts_with("%t") ? 2 : 0;
}

}  // namespace

void FormatScanner::feed(std::string_view text) {
  text_.erase(0, cursor_);
  text_.append(text);
  cursor_ = 0;
  newlines_end_ = text_.rfind('\n') + 1;  // npos + 1 is 0
}

Token FormatScanner::next() {
  while (cursor_ < text_.size()) {
    if (const std::optional<Token> token = scan_lexeme()) return *token;
  }
  return {kEndOfFile, {}, cursor_};
}

TextPlace FormatScanner::place_of(std::size_t position) const {
  const std::string_view before = std::string_view(text_).substr(0, position);
  const auto newlines = std::ranges::count(before, '\n');
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return {static_cast<std::size_t>(newlines) + 1, before.size() - line_start + 1};
}

/// One rule's worth of text; nothing when it was a comment or blanks that do not count.
std::optional<Token> FormatScanner::scan_lexeme() {
  switch (class_of(text_[cursor_])) {
    case ByteClass::Blank:
      return scan_blanks();
    case ByteClass::Newline:
      return scan_newline();
    case ByteClass::Separator:
      return scan_separator();
    case ByteClass::Word:
      break;
  }
  return scan_word();
}

std::optional<Token> FormatScanner::scan_blanks() {
  Token blanks = take(kBlank, run_of(ByteClass::Blank, rest()));
  if (offset_ != EntryOffset::kFormatLine) return std::nullopt;
  blanks.text = " ";
  return blanks;
}

std::optional<Token> FormatScanner::scan_newline() {
  const Token newline = take(kNewline, 1);
  ++linenum_;
  if (offset_ == EntryOffset::kBetweenEntries) return std::nullopt;
  if (offset_ == EntryOffset::kFormatNameLine) condition_ = Condition::FormatLine;
  if (offset_ == EntryOffset::kFormatLine) condition_ = Condition::Slot;
  ++offset_;
  return newline;
}

std::optional<Token> FormatScanner::scan_separator() {
  if (condition_ == Condition::FormatLine) {
    const std::size_t length = specifier_length(rest());
    return length > 0 ? take(kSpec, length) : take(kWord, 1);
  }
  if (condition_ == Condition::Slot) {
    if (const std::size_t length = quoted_length(); length > 0) return take(kQuoted, length);
  }
  return take(static_cast<unsigned char>(text_[cursor_]), 1);
}

std::optional<Token> FormatScanner::scan_word() {
  const std::string_view word = rest().substr(0, run_of(ByteClass::Word, rest()));
  if (word.starts_with("//") && cursor_ < newlines_end_) {
    skip_line_comment();
    return std::nullopt;
  }
  if (word == "/*") {
    skip_block_comment();
    return std::nullopt;
  }
  return take(word_kind(word), word.size());
}

/// Deliberate: the newline is part of the comment, so a comment behind other text does not end the
/// line (FormatScan: LineCommentTakesItsNewline).
void FormatScanner::skip_line_comment() {
  cursor_ = text_.find('\n', cursor_) + 1;
  ++linenum_;
}

/// Deliberate: a comment that never ends runs to the end of the file without a word about it
/// (FormatScan: UnendedBlockCommentRunsToTheEnd).
void FormatScanner::skip_block_comment() {
  const std::size_t close = text_.find("*/", cursor_ + 2);
  const std::size_t end = close == std::string::npos ? text_.size() : close + 2;
  const std::string_view comment = std::string_view(text_).substr(cursor_, end - cursor_);
  linenum_ += static_cast<int>(std::ranges::count(comment, '\n'));
  cursor_ = end;
}

/// A keyword is one only where it can stand; everywhere else it is a word like any other.
int FormatScanner::word_kind(std::string_view word) {
  if (word == "FORMAT" && offset_ == EntryOffset::kBetweenEntries) return kFormat;
  if (word == "FOLLOWS" && offset_ == EntryOffset::kFormatNameLine) return kFollows;
  if (condition_ != Condition::Slot) return kWord;
  if (word == "PRINTF") return kPrintf;
  if (word == "DEFAULT") return kDefault;
  if (word != "END") return kWord;
  condition_ = Condition::Initial;
  return kEnd;
}

/// Length of the quoted string at the cursor with both quotes, a backslash taking any byte along;
/// 0 when there is none or it has no end.
std::size_t FormatScanner::quoted_length() const {
  if (text_[cursor_] != '"') return 0;
  for (std::size_t i = cursor_ + 1; i < text_.size(); ++i) {
    if (text_[i] == '\\') {
      ++i;
    } else if (text_[i] == '"') {
      return i + 1 - cursor_;
    }
  }
  return 0;
}

std::string_view FormatScanner::rest() const { return std::string_view(text_).substr(cursor_); }

Token FormatScanner::take(int kind, std::size_t length) {
  const Token token{kind, rest().substr(0, length), cursor_};
  cursor_ += length;
  return token;
}

}  // namespace zem::format
