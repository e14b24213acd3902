#include "tools/fmt/explain_format.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "tools/fmt/format_edit.h"
#include "tools/fmt/format_trace.h"
#include "tools/fmt/text_marks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

constexpr std::string_view kIndent = "  ";
/// So many of the nearest FORMATs are told apart by what they need to match.
constexpr std::size_t kEditedMin = 10;

/// Without the end of its line; a carriage return there is a blank like any other.
std::string_view without_newline(std::string_view message) {
  if (message.ends_with('\n')) message.remove_suffix(1);
  if (message.ends_with('\r')) message.remove_suffix(1);
  return message;
}

/// The message on one line, every character one column wide.
std::string flat(std::string_view message) {
  std::string shown = printable(without_newline(message));
  std::ranges::replace(shown, '\t', ' ');
  return shown;
}

std::string variable_text(int k) { return std::string(1, '$').append(std::to_string(k)); }

std::string piece_text(std::string_view piece) {
  if (piece == " ") return "a blank";
  if (piece == "%t") return "a time of three words (%t)";
  if (piece == "%s" || piece == "%s+") return "a word (" + std::string(piece) + ")";
  return quoted(piece);
}

bool is_letter_or_digit(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

/// Where `word` stands in `text` from `from` on, as a word and not as a part of one; npos if
/// nowhere.
std::size_t find_word(std::string_view text, std::string_view word, std::size_t from) {
  const auto goes_on = [text](std::size_t at) {  // a word does, from the byte before to this one
    return at > 0 && at < text.size() && is_letter_or_digit(text[at - 1]) &&
           is_letter_or_digit(text[at]);
  };
  for (std::size_t at = text.find(word, from); at != text.npos; at = text.find(word, at + 1)) {
    if (!goes_on(at) && !goes_on(at + word.size())) return at;
  }
  return text.npos;
}

/// Bytes of literal words, of those from piece `failed` on, that stand in the message behind `from`
/// all the same, in their order. Little words are anywhere.
std::size_t words_behind(const std::vector<Piece>& pieces, std::size_t failed,
                         std::string_view message, std::size_t from) {
  constexpr std::size_t kWordBytesMin = 3;
  std::size_t bytes = 0;
  for (std::size_t i = failed; i < pieces.size(); ++i) {
    const std::string& text = pieces[i].word.text;
    if (pieces[i].is_variable || text.size() < kWordBytesMin) continue;
    const std::size_t found = find_word(message, text, from);
    if (found == message.npos) continue;
    from = found + text.size();
    bytes += text.size();
  }
  return bytes;
}

/// Slots that take the variable, separated by commas.
std::string slots_of(const FormatSpec& spec, int k) {
  std::string names;
  for (const MsgMapEntry* slot : spec.slots()) {
    if (slot->position() == k) names.append(names.empty() ? "" : ", ").append(slot->name());
  }
  return names.empty() ? "-" : names;
}

}  // namespace

/// One FORMAT's way through the message.
struct FormatExplainer::Attempt {
  const FormatEntry* entry;
  FormatTrace trace;
  std::size_t words_behind;  ///< bytes, see above
  std::optional<FormatEdit> edit = {};

  /// Nearer ones first. Variables take whatever stands there, so the literal text that the message
  /// has counts most, then how far it went, then how little it takes to match.
  [[nodiscard]] bool is_before(const Attempt& other) const;
  /// What was expected where it stopped, and what stood there.
  [[nodiscard]] std::string reason(std::string_view message) const;
};

bool FormatExplainer::Attempt::is_before(const Attempt& other) const {
  const auto rank = [](const Attempt& attempt) {
    constexpr std::size_t kNoEdit = std::numeric_limits<std::size_t>::max();
    const std::size_t size = attempt.edit ? attempt.edit->size : kNoEdit;
    return std::tuple(attempt.trace.literal_bytes() + attempt.words_behind,
                      attempt.trace.understood(), kNoEdit - size, attempt.entry->index);
  };
  return rank(*this) > rank(other);
}

std::string FormatExplainer::Attempt::reason(std::string_view message) const {
  const std::vector<Piece>& pieces = entry->outline->pieces;
  const std::string_view rest = message.substr(trace.stopped_at);
  const auto* const word_end = std::ranges::find_if(rest, format::is_blank);
  const std::string word(rest.begin(), word_end);
  if (trace.steps.size() == pieces.size()) return "the FORMAT ends, but the message goes on";
  const std::string wanted = piece_text(pieces[trace.steps.size()].word.text);
  if (trace.reached() != trace.stopped_at) return "no " + wanted + " stands behind this place";
  if (without_newline(rest).empty()) return wanted + " is missing: the message ends";
  return wanted + " is missing: " + (word.empty() ? "a blank" : quoted(word)) + " stands here";
}

std::string FormatExplainer::title(const FormatEntry& entry) const {
  return paint_(Color::kBold, entry.outline->name.text) + ", number " +
         std::to_string(entry.index) + ", " + source_.path() + ":" +
         std::to_string(source_.line_of(entry.outline->name.where.position));
}

void FormatExplainer::show_message(const char* message) const {
  out_.write(std::string(kIndent) + flat(message) + "\n");
}

// A match -----------------------------------------------------------------------------------------

void FormatExplainer::show_match(std::size_t index, const char* message) const {
  const FormatEntry& entry = model_.entries()[index];
  out_.write("FORMAT " + title(entry) + "\n");
  show_message(message);
  show_values(entry, trace_format(*entry.spec, message), message);
}

/// Marks below the message, the variables' numbers below the marks, and a line for each.
void FormatExplainer::show_values(const FormatEntry& entry, const FormatTrace& trace,
                                  const char* message) const {
  const std::string_view text = message;
  std::string marks;
  LabelRows labels;
  std::string table;
  int k = 0;
  for (const TraceStep& step : trace.steps) {
    if (!step.is_variable) continue;
    ++k;
    const std::size_t column = width_of(text.substr(0, step.begin));
    const std::string_view taken = text.substr(step.begin, step.end - step.begin);
    if (!taken.empty()) marks.resize(column, ' ');
    marks.append(width_of(taken), '~');
    labels.put(column, variable_text(k));
    table += std::string(kIndent) + variable_text(k) + "  " +
             paint_(Color::kBlue, slots_of(*entry.spec, k)) + "  " + flat(step.value) + "\n";
  }
  out_.write(std::string(kIndent) + paint_(Color::kGreen, marks) + "\n");
  for (const std::string& row : labels.rows()) {
    out_.write(std::string(kIndent) + paint_(Color::kGreen, row) + "\n");
  }
  out_.write(table);
}

// No match ----------------------------------------------------------------------------------------

void FormatExplainer::show_nearest(const char* message, std::size_t count) const {
  out_.write(paint_(Color::kRed, "no FORMAT matches") + "\n");
  show_message(message);
  show_ranking(0, message, count);
}

void FormatExplainer::show_nearest_before(std::size_t index, const char* message,
                                          std::size_t count) const {
  const bool is_first = index + 1 == model_.entries().size();
  out_.write(is_first ? "\nno FORMAT was tried before it\n" : "\ntried before it, the nearest\n");
  show_ranking(index + 1, message, count);
}

void FormatExplainer::show_ranking(std::size_t first_index, const char* message,
                                   std::size_t count) const {
  std::vector<Attempt> attempts;
  for (const FormatEntry& entry : std::span(model_.entries()).subspan(first_index)) {
    FormatTrace trace = trace_format(*entry.spec, message);
    const std::size_t behind =
        words_behind(entry.outline->pieces, trace.steps.size(), message, trace.literal_end());
    attempts.push_back({&entry, std::move(trace), behind});
  }
  const auto is_nearer = [](const Attempt& a, const Attempt& b) { return a.is_before(b); };
  std::ranges::stable_sort(attempts, is_nearer);
  attempts.resize(std::min(attempts.size(), std::max(count, kEditedMin)));
  for (Attempt& attempt : attempts) {
    attempt.edit = smallest_edit(*attempt.entry->spec, attempt.trace, message);
  }
  std::ranges::stable_sort(attempts, is_nearer);
  for (std::size_t i = 0; i < std::min(count, attempts.size()); ++i) {
    out_.write(std::to_string(i + 1) + ". ");
    show_attempt(attempts[i], message);
  }
}

void FormatExplainer::show_attempt(const Attempt& attempt, const char* message) const {
  const std::string_view content = without_newline(message);
  const std::size_t place = std::min(attempt.trace.reached(), content.size());
  const std::size_t column = width_of(content.substr(0, place));
  const std::string indent(kIndent);
  out_.write(title(*attempt.entry) + "\n");
  show_message(message);
  out_.write(indent + std::string(column, ' ') + paint_(Color::kGreen, "^") + " column " +
             std::to_string(place + 1) + ": " + printable(attempt.reason(message)) + "\n");
  out_.write(indent + "is           " + attempt.entry->spec->getFmtStr().getString() + "\n");
  if (!attempt.edit) return;
  out_.write(indent + "would match  " + paint_(Color::kGreen, printable(attempt.edit->line)) +
             "\n");
}

}  // namespace zem::fmt
