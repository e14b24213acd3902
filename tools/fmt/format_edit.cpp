// The candidates change the line where it failed, or right before: another piece, one more, one
// less, a star in place of a single word, the rest cut off. They are tried from the smallest on.
#include "tools/fmt/format_edit.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "tools/fmt/format_model.h"

namespace zem::fmt {
namespace {

using Pieces = std::vector<std::string>;

std::string line_of(const Pieces& pieces) {
  std::string line;
  for (const std::string& piece : pieces) line += piece;
  return line;
}

/// As the engine would read it from a file.
bool matches(const std::string& line, const char* message) {
  const SourceText source("", "FORMAT x\n" + line + "\nEND\n");
  const FormatOutline outline = read_outline(source);
  if (outline.entries.size() != 1 || !outline.entries.front().is_whole) return false;
  const FormatModel model(outline);
  return trace_format(*model.entries().front().spec, message).is_match;
}

std::size_t change_size(std::string_view from, std::string_view to) {
  const auto [a, b] = std::ranges::mismatch(from, to);
  from.remove_prefix(static_cast<std::size_t>(a - from.begin()));
  to.remove_prefix(static_cast<std::size_t>(b - to.begin()));
  while (!from.empty() && !to.empty() && from.back() == to.back()) {
    from.remove_suffix(1);
    to.remove_suffix(1);
  }
  return from.size() + to.size();
}

std::size_t variables_in(std::string_view line) {
  return static_cast<std::size_t>(std::ranges::count(line, '%'));
}

std::size_t difference(std::size_t a, std::size_t b) { return std::max(a, b) - std::min(a, b); }

class Candidates {
 public:
  Candidates(Pieces pieces, std::size_t failed, std::string word)
      : pieces_(std::move(pieces)), failed_(failed), word_(std::move(word)) {}

  /// From the smallest change to the largest.
  [[nodiscard]] std::vector<FormatEdit> edits();

 private:
  void replace(std::size_t begin, std::size_t count, const std::string& text);
  void add(std::string line, std::size_t begin, bool is_new_text);
  void change_around(std::size_t at);

  Pieces pieces_;
  std::size_t failed_;  ///< the number of pieces when text is left over
  std::string word_;    ///< what stands where it failed
  std::string line_ = line_of(pieces_);
  std::vector<FormatEdit> edits_;
};

void Candidates::replace(std::size_t begin, std::size_t count, const std::string& text) {
  if (begin + count > pieces_.size()) return;
  Pieces changed(pieces_.begin(), pieces_.begin() + static_cast<std::ptrdiff_t>(begin));
  changed.push_back(text);
  changed.insert(changed.end(), pieces_.begin() + static_cast<std::ptrdiff_t>(begin + count),
                 pieces_.end());
  const bool is_new_text = count == 0 && !word_.empty() && text.find(word_) != std::string::npos;
  add(line_of(changed), begin, is_new_text);
}

/// Blanks at an end or side by side would only ever match by chance. What undoes pieces that had
/// matched is worse than it looks, and so are another number of variables, which gives those behind
/// another $n, and more text of this one message.
void Candidates::add(std::string line, std::size_t begin, bool is_new_text) {
  constexpr std::size_t kNewTextPenalty = 8;
  if (line.ends_with(' ') || line.starts_with(' ')) return;
  if (line.find("  ") != std::string::npos) return;
  const std::size_t undone = failed_ - std::min(begin, failed_);
  const std::size_t renumbered = 2 * difference(variables_in(line), variables_in(line_));
  const std::size_t size =
      change_size(line_, line) + undone + renumbered + (is_new_text ? kNewTextPenalty : 0);
  edits_.push_back({std::move(line), size});
}

void Candidates::change_around(std::size_t at) {
  for (const std::string& text :
       {std::string("%s"), std::string("%s*"), std::string("%s+"), std::string("%s "),
        std::string(" %s"), std::string("%s* "), std::string(" %s*"), std::string(" "), word_,
        word_ + " ", " " + word_, std::string()}) {
    for (std::size_t count = 0; count <= 3; ++count) replace(at, count, text);
    replace(at, pieces_.size() - std::min(at, pieces_.size()), text);
  }
}

std::vector<FormatEdit> Candidates::edits() {
  constexpr std::size_t kPiecesBack = 3;
  for (std::size_t back = 0; back <= std::min(kPiecesBack, failed_); ++back) {
    change_around(failed_ - back);
  }
  std::ranges::stable_sort(edits_, {}, &FormatEdit::size);
  return std::move(edits_);
}

}  // namespace

std::optional<FormatEdit> smallest_edit(const FormatSpec& spec, const FormatTrace& trace,
                                        const char* message) {
  Pieces pieces;
  for (const FormatComponent* component : spec.components()) pieces.push_back(component->fmtRep());
  const std::string_view rest = std::string_view(message).substr(trace.stopped_at);
  const auto* const end = std::ranges::find_if(rest, format::is_blank);
  Candidates candidates(std::move(pieces), trace.steps.size(), std::string(rest.begin(), end));
  for (FormatEdit& edit : candidates.edits()) {
    if (matches(edit.line, message)) return std::move(edit);
  }
  return std::nullopt;
}

}  // namespace zem::fmt
