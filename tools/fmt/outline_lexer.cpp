#include "tools/fmt/outline_lexer.h"

namespace zem::fmt {

using format::EntryOffset;

OutlineLexer::OutlineLexer(std::string_view text) : text_(text) { restart_between_entries(0); }

Span OutlineLexer::span() const {
  // A run of blanks is handed out as a single one.
  return {token_.position, token_.text.size()};
}

void OutlineLexer::advance() {
  previous_end_ = token_.position + token_.text.size();
  token_ = scanner_->next();
  token_.position += base_;
}

void OutlineLexer::restart_between_entries(std::size_t position) {
  offset_ = EntryOffset::kBetweenEntries;
  scanner_.emplace(offset_, linenum_);
  feed_from(position);
}

/// Only the newline of a format line takes the scanner to the slots: it gets one.
void OutlineLexer::restart_in_slots(std::size_t position) {
  offset_ = EntryOffset::kFormatLine;
  scanner_.emplace(offset_, linenum_);
  scanner_->feed("\n");
  (void)scanner_->next();
  feed_from(position);
}

void OutlineLexer::feed_from(std::size_t position) {
  scanner_->feed(text_.substr(position));
  base_ = position;
  token_ = {format::kEndOfFile, {}, position};
  previous_end_ = position;
}

}  // namespace zem::fmt
