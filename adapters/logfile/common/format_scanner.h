/// The scanner of the format file: it cuts the file's text, held in memory, into the tokens of the
/// grammar (config.y). It knows where in an entry it stands, because a format line is read by
/// other rules than the lines around it; it leaves the meaning of tokens, the limit on their
/// length and all reports to the reader (format_reader.h).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zem::format {

/// What `Token::kind` says when it is neither of these is one of the characters `"` `%` `(` `)`
/// `,` or backslash, standing for itself.
enum TokenKind : int {
  kEndOfFile = 0,
  kWord = 257,
  kSpec = 258,
  kBlank = 259,
  kQuoted = 260,
  kNewline = 261,
  kFormat = 262,
  kEnd = 263,
  kFollows = 264,
  kPrintf = 265,
  kDefault = 266,
};

struct Token {
  int kind = kEndOfFile;
  std::string_view text;     ///< as it stands in the file, of any length; empty at end of file
  std::size_t position = 0;  ///< byte offset of its first byte in the text
};

/// A place as an editor counts it, both from 1. The column counts bytes.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// Position inside the current entry, which decides what a newline and a keyword mean: 0 between
/// entries, 1 on the FORMAT line, 2 on the format line, 3 and above on the slot lines. The scanner
/// moves it on at each newline inside an entry; the grammar sets it to 1 and back to 0.
struct EntryOffset {
  static constexpr int kBetweenEntries = 0;
  static constexpr int kFormatNameLine = 1;
  static constexpr int kFormatLine = 2;
};

class FormatScanner {
 public:
  /// `offset` (see EntryOffset) and `linenum`, the newlines consumed so far, are shared with the
  /// grammar and the reports, and outlive the scanner.
  FormatScanner(int& offset, int& linenum) : offset_(offset), linenum_(linenum) {}

  /// More text, behind what is still unread. Views of earlier tokens end here.
  void feed(std::string_view text);

  /// The next token. Its text is a view into the scanner's text, good until the next `feed`.
  Token next();

  /// True place of a token's `position`, newlines in quoted strings counted. Walks the text up to
  /// there, so it is for messages only.
  [[nodiscard]] TextPlace place_of(std::size_t position) const;

 private:
  enum class Condition { Initial, FormatLine, Slot };

  std::optional<Token> scan_lexeme();
  std::optional<Token> scan_blanks();
  std::optional<Token> scan_newline();
  std::optional<Token> scan_separator();
  std::optional<Token> scan_word();
  void skip_line_comment();
  void skip_block_comment();
  int word_kind(std::string_view word);
  [[nodiscard]] std::size_t quoted_length() const;
  [[nodiscard]] std::string_view rest() const;
  Token take(int kind, std::size_t length);

  int& offset_;
  int& linenum_;
  Condition condition_ = Condition::Initial;
  std::string text_;
  std::size_t cursor_ = 0;
  std::size_t newlines_end_ = 0;  ///< just behind the last newline of the text; 0: it has none
};

}  // namespace zem::format
