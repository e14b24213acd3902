/// What `check` has to say about a file: a place, a fault and how to mend it. Every kind of finding
/// has a code that stays the same, by which the manual explains it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fmt/console.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

/// An error is what makes the daemon refuse the file.
enum class Severity { kError, kWarning };

enum class Code {
  // Format files
  kSyntax,
  kTokenTooLong,
  kUnknownParent,
  kTooManyVariables,
  kVariableOutOfRange,
  kRefused,
  kCommentTakesNewline,
  kQuoteSpansLines,
  kFormatAsSlot,
  kCarriageReturn,
  kNoFormats,
  kUnmappedVariable,
  kVariableMappedTwice,
  kInheritedDropped,
  kSameFormatLine,
  kNeverWins,
  kStarBeforeVariable,
  kTwoBlanks,
  kDefaultNotFilled,
  kPrintfWithoutArguments,
  kPrintfOfPrintf,
  kPrintfUnknownSlot,
  kEscapedQuote,
  kUnreadableName,
  kDiscardName,
  kConstantTooLong,
  kDuplicateFormat,
  kDuplicateSlot,
  // Class files
  kClassSyntax,
  kClassRefused,
  kNoClasses,
  kClassUnreached,
  kClassOtherFormat,
  kFormatWithoutClass,
  kClassBehind,
  kClassWithoutSelect,
  kPrintfTooFew,
  kPrintfTooMany,
  kPrintfConversion,
  kItemNeverHolds,
  kItemAlwaysHolds,
  kSlotNeverFilled,
  kNoLastNewline,
  // Configurations
  kSettingSyntax,
  kUnknownKey,
  kBlankAtEquals,
  kNotANumber,
  kDuplicateKey,
  kBlankInList,
  kBadPort,
  kCacheNeverFilled,
  kNothingSent,
  kCount,
};

struct CodeEntry {
  Code code;
  Severity severity;
  std::string_view text;  ///< as it stands in brackets
};

/// In the order of Code.
[[nodiscard]] std::span<const CodeEntry> code_entries();

struct Finding {
  Code code;
  Span where;
  std::string text;
  std::string remedy;
  std::vector<std::string> engine = {};  ///< what the daemon itself says of it, a line each

  [[nodiscard]] Severity severity() const;
};

/// The findings of one file.
class Findings {
 public:
  explicit Findings(const SourceText& source) : source_(&source) {}

  void add(Finding finding) { findings_.push_back(std::move(finding)); }
  void add(Code code, Span where, std::string text, std::string remedy);
  [[nodiscard]] bool empty() const noexcept { return findings_.empty(); }
  [[nodiscard]] const std::vector<Finding>& all() const noexcept { return findings_; }
  [[nodiscard]] const SourceText& source() const noexcept { return *source_; }

  /// In the order of their places: what the engine says, "file:line:column: severity: text [code]",
  /// the line, and the remedy behind a mark below the place.
  void print(Output& out, const Painter& paint) const;

 private:
  const SourceText* source_;
  std::vector<Finding> findings_;
};

/// "2 errors, 1 warning".
[[nodiscard]] std::string count_text(std::span<const Finding> findings);

}  // namespace zem::fmt
