/// The kernel's scanner as a tolerant reader needs it: one token ahead, with its place.
#pragma once

#include <string>

#include "adapters/libzemad/class_scanner.h"
#include "tools/fmt/byte_feed.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

class ClassLexer {
 public:
  /// It stands before the first token: `advance` comes first.
  explicit ClassLexer(const SourceText& source);

  [[nodiscard]] int kind() const noexcept { return kind_; }
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  [[nodiscard]] int number() const { return scanner_.number(); }
  [[nodiscard]] Span span() const;
  [[nodiscard]] bool at_end() const { return kind_ == kernel::ClassScanner::kEndOfInput; }

  void advance();
  /// The next token is the format of a PRINTF: a text, whatever it looks like.
  void advance_to_format();

 private:
  const SourceText& source_;
  ByteFeed feed_;
  kernel::ClassScanner scanner_;
  int kind_ = 0;
  std::string text_;
};

}  // namespace zem::fmt
