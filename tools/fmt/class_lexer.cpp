#include "tools/fmt/class_lexer.h"

namespace zem::fmt {

/// No event keyword has a name that a rule could write.
ClassLexer::ClassLexer(const SourceText& source)
    : source_(source),
      feed_(std::string(source.text())),
      scanner_(ByteFeed::next, [](const char*) { return -1; }) {}

void ClassLexer::advance() {
  kind_ = scanner_.yylexreal();
  text_ = scanner_.text();
}

void ClassLexer::advance_to_format() {
  scanner_.switch_reserved_words(false);
  advance();
  scanner_.switch_reserved_words(true);
}

/// A word is read together with the blank or newline that ends it.
Span ClassLexer::span() const {
  const std::size_t position = scanner_.position();
  std::string_view read = source_.text().substr(position, scanner_.consumed() - position);
  if (at_end()) return {source_.text().size(), 0};
  const std::size_t last = read.find_last_not_of(" \t\n");
  return {position, last == std::string_view::npos ? 1 : last + 1};
}

}  // namespace zem::fmt
