/// Bytes of a class definition file to tokens: words, quoted strings, punctuation, comments. The
/// numbers of the tokens are the grammar's. The scanner knows the spelling of things and nothing
/// about their order.
#pragma once

#include <optional>
#include <string>

#include "adapters/libzemad/class_grammar.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/parse.h"

namespace zem::kernel {

class ClassScanner {
 public:
  static constexpr int kEndOfInput = -1;
  static constexpr std::size_t kTextBytesMax = 1023;

  using KeywordIndex = int (*)(const char* name);

  /// Reads what `get_routine` delivers; `keyword_index` knows the rows of the event keyword table,
  /// -1 for a name that is none.
  explicit ClassScanner(ZEMAD_GetRoutineChar get_routine,
                        KeywordIndex keyword_index = ZEMAD_GetKeywordIndex);

  /// The next token: a punctuation byte, a TOKEN_ number, or kEndOfInput. Traced at VERBOSE.
  int yylex();
  int yylexreal();

  /// Text of the token that was returned last, at most kTextBytesMax bytes of it. It ends at the
  /// first NUL byte; empty at the end of the input. Valid until the next token.
  [[nodiscard]] const char* text() const { return text_.c_str(); }
  /// Its number: a NUMBER's value, the n of a reference, a keyword's row, a reserved word's token.
  [[nodiscard]] int number() const { return number_; }
  /// Offset of the token's first byte in what was read, and how many bytes were read for it and all
  /// before it, for tools that point at it.
  [[nodiscard]] std::size_t position() const { return position_; }
  [[nodiscard]] std::size_t consumed() const { return consumed_; }
  /// The line being read, from 1. Newlines in quoted strings do not count.
  [[nodiscard]] int line() const { return line_; }

  /// While they are off, every word is a STRING.
  void switch_reserved_words(bool on) { reserved_words_on_ = on; }
  /// The next token is the first from here on that begins a statement (or the end of the input).
  void skip_to_statement() { skips_to_statement_ = true; }

 private:
  int mygetchar();
  void myungetchar(int byte);
  bool read_line();
  void trace_line() const;

  /// What the finished word in `text_` is.
  int find_reserved_word();
  std::optional<int> find_reference();
  std::optional<int> find_number();
  int quoted_string(int delimiter);
  void skip_comment();
  void append(int byte);
  template <class Pleases>
  void append_while(Pleases pleases);
  int yylex_traced();

  ZEMAD_GetRoutineChar get_routine_;
  KeywordIndex keyword_index_;
  std::string line_buffer_;
  std::size_t next_byte_ = 0;  ///< in `line_buffer_`
  int unchar_ = kEndOfInput;   ///< one byte pushed back; kEndOfInput: none
  std::size_t consumed_ = 0;
  std::size_t position_ = 0;
  std::string text_;
  int number_ = 0;
  int line_ = 1;
  bool reserved_words_on_ = true;
  bool skips_to_statement_ = false;
};

}  // namespace zem::kernel
