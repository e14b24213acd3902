// A finding on a terminal:
//
//   error at line 13: $5 must be between 1 and 4
//   app.fmt:14:8: error: slot "origin" reads $5, but this format line has 4 variables [...]
//   origin $5
//          ^~ add a variable to line 12, or use $1 to $4
#include "tools/fmt/finding.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tools/fmt/text_marks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

constexpr CodeEntry error(Code code, std::string_view text) {
  return {code, Severity::kError, text};
}
constexpr CodeEntry warning(Code code, std::string_view text) {
  return {code, Severity::kWarning, text};
}

constexpr std::array kCodes = {
    error(Code::kSyntax, "syntax"),
    error(Code::kTokenTooLong, "token-too-long"),
    error(Code::kUnknownParent, "unknown-parent"),
    error(Code::kTooManyVariables, "too-many-variables"),
    error(Code::kVariableOutOfRange, "variable-out-of-range"),
    error(Code::kRefused, "refused"),
    warning(Code::kCommentTakesNewline, "comment-takes-newline"),
    warning(Code::kQuoteSpansLines, "quote-spans-lines"),
    warning(Code::kFormatAsSlot, "format-as-slot"),
    warning(Code::kCarriageReturn, "carriage-return"),
    warning(Code::kNoFormats, "no-formats"),
    warning(Code::kUnmappedVariable, "unmapped-variable"),
    warning(Code::kVariableMappedTwice, "variable-mapped-twice"),
    warning(Code::kInheritedDropped, "inherited-dropped"),
    warning(Code::kSameFormatLine, "same-format-line"),
    warning(Code::kNeverWins, "never-wins"),
    warning(Code::kStarBeforeVariable, "star-before-variable"),
    warning(Code::kTwoBlanks, "two-blanks"),
    warning(Code::kDefaultNotFilled, "default-not-filled"),
    warning(Code::kPrintfWithoutArguments, "printf-without-arguments"),
    warning(Code::kPrintfOfPrintf, "printf-of-printf"),
    warning(Code::kPrintfUnknownSlot, "printf-unknown-slot"),
    warning(Code::kEscapedQuote, "escaped-quote"),
    warning(Code::kUnreadableName, "unreadable-name"),
    warning(Code::kDiscardName, "discard-name"),
    warning(Code::kConstantTooLong, "constant-too-long"),
    warning(Code::kDuplicateFormat, "duplicate-format"),
    warning(Code::kDuplicateSlot, "duplicate-slot"),
    error(Code::kClassSyntax, "class-syntax"),
    error(Code::kClassRefused, "class-refused"),
    warning(Code::kNoClasses, "no-classes"),
    warning(Code::kClassUnreached, "class-unreached"),
    warning(Code::kClassOtherFormat, "class-other-format"),
    warning(Code::kFormatWithoutClass, "format-without-class"),
    warning(Code::kClassBehind, "class-behind"),
    warning(Code::kClassWithoutSelect, "class-without-select"),
    warning(Code::kPrintfTooFew, "printf-too-few"),
    warning(Code::kPrintfTooMany, "printf-too-many"),
    warning(Code::kPrintfConversion, "printf-conversion"),
    warning(Code::kItemNeverHolds, "item-never-holds"),
    warning(Code::kItemAlwaysHolds, "item-always-holds"),
    warning(Code::kSlotNeverFilled, "slot-never-filled"),
    warning(Code::kNoLastNewline, "no-last-newline"),
    warning(Code::kSettingSyntax, "setting-syntax"),
    warning(Code::kUnknownKey, "unknown-key"),
    warning(Code::kBlankAtEquals, "blank-at-equals"),
    warning(Code::kNotANumber, "not-a-number"),
    warning(Code::kDuplicateKey, "duplicate-key"),
    warning(Code::kBlankInList, "blank-in-list"),
    warning(Code::kBadPort, "bad-port"),
    warning(Code::kCacheNeverFilled, "cache-never-filled"),
    warning(Code::kNothingSent, "nothing-sent"),
};
static_assert(kCodes.size() == static_cast<std::size_t>(Code::kCount));
static_assert([] {
  for (std::size_t i = 0; i < kCodes.size(); ++i) {
    if (static_cast<std::size_t>(kCodes[i].code) != i) return false;
  }
  return true;
}());

const CodeEntry& entry_of(Code code) { return kCodes[static_cast<std::size_t>(code)]; }

// A quoted line -----------------------------------------------------------------------------------

constexpr std::size_t kQuotedBytesMax = 160;
constexpr std::size_t kEngineBytesMax = 512;

/// A line with the marked bytes; of a long one what lies around them.
struct Quote {
  std::string_view before;
  std::string_view marked;
  std::string_view behind;
  bool is_cut_left = false;
  bool is_cut_right = false;
};

Quote quote_of(std::string_view line, std::size_t column, std::size_t length) {
  const std::size_t start = std::min(column - 1, line.size());
  Quote quote;
  quote.before = line.substr(0, start);
  quote.marked = line.substr(start, std::min(length, kQuotedBytesMax / 2));
  quote.behind = line.substr(start + quote.marked.size());
  if (line.size() <= kQuotedBytesMax) return quote;
  quote.is_cut_left = quote.before.size() > kQuotedBytesMax / 4;
  if (quote.is_cut_left) quote.before = quote.before.substr(start - kQuotedBytesMax / 4);
  quote.is_cut_right = quote.behind.size() > kQuotedBytesMax / 4;
  if (quote.is_cut_right) quote.behind = quote.behind.substr(0, kQuotedBytesMax / 4);
  return quote;
}

/// The daemon quotes words of any length and any bytes, newlines included.
std::string engine_line(const std::string& line) {
  std::string shown = printable(line.substr(0, kEngineBytesMax));
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (line[i] == '\n') shown[i] = '\n';
  }
  return line.size() > kEngineBytesMax ? shown + "..." : shown;
}

std::string mark_of(const Quote& quote) {
  const std::size_t width = std::max<std::size_t>(width_of(quote.marked), 1);
  return std::string(1, '^').append(width - 1, '~');
}

void print_quote(Output& out, const Painter& paint, const Quote& quote, const std::string& remedy) {
  const std::string left = quote.is_cut_left ? "..." : "";
  const std::string right = quote.is_cut_right ? "..." : "";
  out.write(left + printable(quote.before) + printable(quote.marked) + printable(quote.behind) +
            right + "\n");
  out.write(std::string(left.size(), ' ') + blanks_below(quote.before) +
            paint(Color::kGreen, mark_of(quote)) + " " + remedy + "\n");
}

}  // namespace

std::span<const CodeEntry> code_entries() { return kCodes; }

Severity Finding::severity() const { return entry_of(code).severity; }

void Findings::add(Code code, Span where, std::string text, std::string remedy) {
  add(Finding{code, where, std::move(text), std::move(remedy)});
}

void Findings::print(Output& out, const Painter& paint) const {
  std::vector<const Finding*> sorted;
  for (const Finding& finding : findings_) sorted.push_back(&finding);
  std::ranges::stable_sort(sorted, {}, [](const Finding* f) { return f->where.position; });
  for (const Finding* finding : sorted) {
    for (const std::string& line : finding->engine) out.write(engine_line(line) + "\n");
    const auto [line, column] = source_->place_of(finding->where.position);
    const bool is_error = finding->severity() == Severity::kError;
    out.write(paint(Color::kBold, source_->path() + ":" + std::to_string(line) + ":" +
                                      std::to_string(column) + ":") +
              " " + paint(is_error ? Color::kRed : Color::kYellow, is_error ? "error" : "warning") +
              ": " + printable(finding->text) + " [" + std::string(entry_of(finding->code).text) +
              "]\n");
    print_quote(out, paint, quote_of(source_->line(line), column, finding->where.length),
                printable(finding->remedy));
  }
}

std::string count_text(std::span<const Finding> findings) {
  const auto errors = static_cast<std::size_t>(std::ranges::count_if(
      findings, [](const Finding& f) { return f.severity() == Severity::kError; }));
  const std::size_t warnings = findings.size() - errors;
  if (errors == 0) return counted(warnings, "warning");
  if (warnings == 0) return counted(errors, "error");
  return counted(errors, "error") + ", " + counted(warnings, "warning");
}

}  // namespace zem::fmt
