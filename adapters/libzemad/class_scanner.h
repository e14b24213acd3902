/// A class definition file's text to tokens: words, quoted strings, punctuation, comments. The
/// numbers of the tokens are the grammar's. The scanner knows the spelling of things and nothing
/// about their order.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/libzemad/class_grammar.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/parse.h"

namespace zem::kernel {

class ClassScanner {
 public:
  static constexpr int kEndOfInput = -1;
  static constexpr std::size_t kTextBytesMax = 1023;

  using KeywordIndex = int (*)(const char* name);

  /// Scans `text`, which must outlive the scanner; `keyword_index` knows the rows of the event
  /// keyword table, -1 for a name that is none.
  explicit ClassScanner(std::string_view text, KeywordIndex keyword_index = ZEMAD_GetKeywordIndex);
  /// Scans all that `get_routine` delivers; it is read to its end at once.
  explicit ClassScanner(ZEMAD_GetRoutineChar get_routine,
                        KeywordIndex keyword_index = ZEMAD_GetKeywordIndex);
  ClassScanner(const ClassScanner&) = delete;
  ClassScanner& operator=(const ClassScanner&) = delete;

  /// The next token: a punctuation byte, a TOKEN_ number, or kEndOfInput. Traced at VERBOSE.
  int yylex();
  int yylexreal();

  /// Text of the token that was returned last, at most kTextBytesMax bytes of it. It ends before
  /// the first NUL byte; empty at the end of the input. Valid until the next token.
  [[nodiscard]] std::string_view token() const { return token_; }
  /// The same as a C string, for messages; valid until the next call.
  [[nodiscard]] const char* text() const { return (shown_ = token_).c_str(); }
  /// Its number: a NUMBER's value, the n of a reference, a keyword's row, a reserved word's token.
  [[nodiscard]] int number() const { return number_; }
  /// Offset of the token's first byte in the text, and how many bytes were read for it and all
  /// before it, for tools that point at it.
  [[nodiscard]] std::size_t position() const { return position_; }
  [[nodiscard]] std::size_t consumed() const { return cursor_; }
  /// The line being read, from 1. Newlines in quoted strings do not count.
  [[nodiscard]] int line() const { return line_; }

  /// While they are off, every word is a STRING.
  void switch_reserved_words(bool on) { reserved_words_on_ = on; }
  /// The next token is the first from here on that begins a statement (or the end of the input).
  void skip_to_statement() { skips_to_statement_ = true; }

 private:
  [[nodiscard]] bool at_byte();
  bool next_line();
  void trace_line() const;
  [[nodiscard]] std::string_view rest_of_line() const {
    return text_.substr(cursor_, line_end_ - cursor_);
  }

  /// What the finished word in `token_` is.
  int find_reserved_word();
  std::optional<int> find_reference();
  std::optional<int> find_number();
  int quoted_string(char delimiter);
  void skip_comment();
  /// The next `bytes` go behind what the token has. What does not fit is dropped without notice.
  void take(std::size_t bytes) {
    const std::string_view taken = text_.substr(cursor_, bytes);
    cursor_ += bytes;
    if (token_.empty()) {
      token_ = taken.substr(0, kTextBytesMax);
    } else {
      join(taken);
    }
  }
  void join(std::string_view taken);
  int end_input();
  int yylex_traced();

  std::string delivered_;  ///< the text, when a routine delivered it
  std::string_view text_;
  KeywordIndex keyword_index_;
  std::size_t cursor_ = 0;    ///< the next byte
  std::size_t line_end_ = 0;  ///< of its line; equal to `cursor_` when that is yet to be found
  std::size_t position_ = 0;
  std::string_view token_;     ///< a part of the text, or `joined_`
  std::string joined_;         ///< a token that does not stand in one piece
  mutable std::string shown_;  ///< for `text`
  int number_ = 0;
  int line_ = 1;
  bool reserved_words_on_ = true;
  bool skips_to_statement_ = false;
};

}  // namespace zem::kernel
