/// The engine's scanner as a tolerant reader needs it: one token ahead, places that count from the
/// start of the file, and a way to begin anew anywhere in it.
#pragma once

#include <optional>
#include <string_view>

#include "adapters/logfile/common/format_scanner.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

class OutlineLexer {
 public:
  /// `text` outlives the lexer. It stands before the first token: `advance` comes first.
  explicit OutlineLexer(std::string_view text);

  [[nodiscard]] const format::Token& token() const noexcept { return token_; }
  [[nodiscard]] Span span() const;
  /// Where the token before this one ended.
  [[nodiscard]] std::size_t previous_end() const noexcept { return previous_end_; }
  void advance();

  /// What the grammar tells the scanner, each before the next token is read.
  void begin_format() { offset_ = format::EntryOffset::kFormatNameLine; }
  void end_format() { offset_ = format::EntryOffset::kBetweenEntries; }

  /// Goes on at `position`, as if that were between entries or the start of a slot line.
  void restart_between_entries(std::size_t position);
  void restart_in_slots(std::size_t position);

 private:
  void feed_from(std::size_t position);

  std::string_view text_;
  int offset_ = 0;
  int linenum_ = 0;
  std::size_t base_ = 0;  ///< of the scanner's text in the file
  std::optional<format::FormatScanner> scanner_;
  format::Token token_;
  std::size_t previous_end_ = 0;
};

}  // namespace zem::fmt
