#include "tools/fmt/check_format.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/format_checks.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

bool is_error(const Finding& finding) { return finding.severity() == Severity::kError; }

/// The outline meets the errors in the engine's order, and the engine's reading ends with the first
/// syntax error: up to there they speak of the same things. What the engine has to say beyond that,
/// of text that was read in two ways, belongs to the last.
void add_engine_words(std::vector<Finding>& findings, const std::vector<EngineReport>& reports) {
  auto finding = std::ranges::find_if(findings, is_error);
  for (const EngineReport& report : reports) {
    if (!report.is_error) continue;
    if (finding == findings.end()) {
      findings.push_back({Code::kRefused, {}, "the daemon refuses this file", "see above", {}});
      finding = findings.end() - 1;
    }
    finding->engine.push_back(report.rendered());
    const auto next = std::find_if(finding + 1, findings.end(), is_error);
    if (next != findings.end()) finding = next;
  }
}

/// One finding for the whole file: where one line has it, all have.
void check_carriage_returns(const SourceText& source, Findings& findings) {
  const std::size_t first = source.text().find("\r\n");
  if (first == std::string_view::npos) return;
  findings.add(Code::kCarriageReturn, {first, 1},
               "this line ends in a carriage return, which is part of its last word",
               "save the file with plain newlines");
}

/// True when every line ends in one: nearly all else that is wrong with such a file is their doing.
bool has_carriage_returns_only(const SourceText& source) {
  const std::string_view text = source.text();
  bool has_any = false;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', end + 1)) {
    if (end == 0 || text[end - 1] != '\r') return false;
    has_any = true;
  }
  return has_any;
}

void keep_first_error(std::vector<Finding>& findings) {
  const auto first = std::ranges::find_if(findings, is_error);
  findings.erase(findings.begin(), first);
  if (findings.size() > 1) findings.erase(findings.begin() + 1, findings.end());
}

}  // namespace

CheckedFormats::CheckedFormats(const std::string& path)
    : source_(SourceText::read(path)),
      outline_(read_outline(source_)),
      model_(outline_),
      findings_(source_) {
  take_verdict(path);
  check_carriage_returns(source_, findings_);
  if (has_carriage_returns_only(source_)) return;
  for (const FormatCheck check : format_checks()) check(model_, findings_);
}

/// The engine decides whether there are errors at all.
void CheckedFormats::take_verdict(const std::string& path) {
  LogDriver set;
  const FormatReading reading = read_formats(path, set);
  is_accepted_ = reading.is_accepted;
  std::vector<Finding> found = std::exchange(outline_.findings, {});
  if (is_accepted_) {
    std::erase_if(found, is_error);
  } else {
    add_engine_words(found, reading.reports);
  }
  if (has_carriage_returns_only(source_)) keep_first_error(found);
  for (Finding& finding : found) findings_.add(std::move(finding));
}

}  // namespace zem::fmt
