#include "tools/fmt/source_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "tools/fmt/command.h"
#include "tools/fmt/format_file.h"

namespace zem::fmt {

SourceText::SourceText(std::string path, std::string text)
    : path_(std::move(path)), text_(std::move(text)), line_starts_{0} {
  for (std::size_t at = text_.find('\n'); at != std::string::npos; at = text_.find('\n', at + 1)) {
    line_starts_.push_back(at + 1);
  }
}

SourceText SourceText::read(const std::string& path) {
  require_readable(path);
  if (!std::filesystem::is_regular_file(path)) {
    throw Failure(ExitStatus::kNoInput,
                  path + ": not a regular file; it is read more than once, so save it first");
  }
  std::ifstream in(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(in), {}};
  if (in.bad()) throw Failure(ExitStatus::kNoInput, "read " + path + ": input/output error");
  return {path, std::move(text)};
}

format::TextPlace SourceText::place_of(std::size_t position) const {
  const auto next = std::ranges::upper_bound(line_starts_, position);
  const auto line = static_cast<std::size_t>(next - line_starts_.begin());
  return {line, position - line_starts_[line - 1] + 1};
}

std::size_t SourceText::line_start(std::size_t number) const {
  return number >= 1 && number <= line_starts_.size() ? line_starts_[number - 1] : text_.size();
}

std::string_view SourceText::line(std::size_t number) const {
  const std::string_view rest = text().substr(line_start(number));
  return rest.substr(0, rest.find('\n'));
}

}  // namespace zem::fmt
