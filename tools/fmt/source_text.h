/// The text of a file that is looked into: offsets become places, and lines can be quoted.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/format_scanner.h"

namespace zem::fmt {

/// Some bytes of a text.
struct Span {
  std::size_t position = 0;
  std::size_t length = 0;
};

class SourceText {
 public:
  SourceText(std::string path, std::string text);
  /// The file at `path`; a Failure (kNoInput) when it can not be read.
  [[nodiscard]] static SourceText read(const std::string& path);

  [[nodiscard]] const std::string& path() const noexcept { return path_; }
  [[nodiscard]] std::string_view text() const noexcept { return text_; }
  /// Lines and columns count from 1, columns in bytes.
  [[nodiscard]] format::TextPlace place_of(std::size_t position) const;
  [[nodiscard]] std::size_t line_of(std::size_t position) const { return place_of(position).line; }
  /// Line `number`, counting from 1, without its newline; empty beyond the last.
  [[nodiscard]] std::string_view line(std::size_t number) const;
  /// Where that line begins; the end of the text beyond the last.
  [[nodiscard]] std::size_t line_start(std::size_t number) const;

 private:
  std::string path_;
  std::string text_;
  std::vector<std::size_t> line_starts_;
};

}  // namespace zem::fmt
