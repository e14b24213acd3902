/// The class scanner as it is described: a byte at a time, one byte of push-back, and each word
/// looked at when it has ended. The one that the kernel uses is compared with it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/libzemad/class_scanner.h"

namespace zem::test {

class PlainClassScanner {
 public:
  static constexpr int kEndOfInput = kernel::ClassScanner::kEndOfInput;

  /// `text` must outlive the scanner.
  PlainClassScanner(std::string_view text, kernel::ClassScanner::KeywordIndex keyword_index)
      : rest_(text), keyword_index_(keyword_index) {}

  int yylexreal();
  [[nodiscard]] const char* text() const { return text_.c_str(); }
  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] std::size_t position() const { return position_; }
  [[nodiscard]] std::size_t consumed() const { return consumed_; }
  [[nodiscard]] int line() const { return line_; }
  void switch_reserved_words(bool on) { reserved_words_on_ = on; }

 private:
  int mygetchar();
  void myungetchar(int byte);
  bool read_line();
  int find_reserved_word();
  std::optional<int> find_reference();
  std::optional<int> find_number();
  int quoted_string(int delimiter);
  void skip_comment();
  void append(int byte);

  std::string_view rest_;  ///< behind the line
  kernel::ClassScanner::KeywordIndex keyword_index_;
  std::string line_buffer_;
  std::size_t next_byte_ = 0;  ///< in `line_buffer_`
  int unchar_ = kEndOfInput;   ///< one byte pushed back; kEndOfInput: none
  std::size_t consumed_ = 0;
  std::size_t position_ = 0;
  std::string text_;
  int number_ = 0;
  int line_ = 1;
  bool reserved_words_on_ = true;
};

}  // namespace zem::test
