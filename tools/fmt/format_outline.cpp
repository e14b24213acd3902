// Where the reader goes on behind a fault depends on where it met it:
//
//   between entries, on the FORMAT line, on the format line    at the next line that begins FORMAT
//   on a slot line                                              at the next line, still in the
//   entry on a slot line, and the line or the last one begins FORMAT  at that FORMAT: its END is
//   missing
//
// "FORMAT Name" is a slot line like any other as long as the entry has not ended, so the engine
// meets the missing END one line late.
#include "tools/fmt/format_outline.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/format_reader.h"
#include "tools/fmt/outline_lexer.h"
#include "tools/fmt/words.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

/// Behind so many faults a file is no format file, and nobody reads on.
constexpr std::size_t kFaultsMax = 200;
constexpr std::size_t kTokenBytesMax = 255;

/// What a slot line turned out to be while it was read.
struct LineFault {
  Span where;
  std::string text;
  std::string remedy;
};

class OutlineReader {
 public:
  explicit OutlineReader(const SourceText& source) : source_(source), lexer_(source.text()) {}
  FormatOutline read();

 private:
  using OptionalFault = std::optional<LineFault>;

  // The file
  void read_entry();
  bool read_format_name_line();
  bool read_parent();
  bool read_format_line();
  void take_piece();
  void read_slots();
  bool read_end();

  // A slot line
  OptionalFault read_slot_line(SlotLine& slot);
  OptionalFault read_slot_value(SlotLine& slot);
  [[nodiscard]] LineFault missing_value(const SlotLine& slot) const;
  OptionalFault read_printf(SlotLine& slot);
  OptionalFault read_arguments(SlotLine& slot);
  OptionalFault read_line_end(std::string_view what);
  void take_slot(SlotLine slot);
  void check_position(const SlotLine& slot);

  // Faults
  void recover_slot_line(const LineFault& line_fault);
  bool recover_missing_end(const SlotLine& slot);
  void report_missing_end(const PlacedWord& format);
  [[nodiscard]] bool is_blank_between(std::size_t begin, std::size_t end) const;
  void fault(Span where, std::string text, std::string remedy);
  void fault_here(std::string text, std::string remedy);
  bool fail_to_next_format(std::string text, std::string remedy);
  void skip_to_format();
  void note_comment();
  void report_comment();
  [[nodiscard]] std::string comment_hint() const;

  // Tokens
  void advance();
  PlacedWord take_word();
  [[nodiscard]] bool at(int kind) const { return lexer_.token().kind == kind; }
  /// As the engine takes it: a NUL ends the text of a token.
  [[nodiscard]] std::string_view token_text() const {
    const std::string_view text = lexer_.token().text;
    return text.substr(0, text.find('\0'));
  }
  [[nodiscard]] std::string seen() const;
  [[nodiscard]] EntryOutline& entry() { return outline_.entries.back(); }
  void find(Code code, Span where, std::string text, std::string remedy);

  const SourceText& source_;
  OutlineLexer lexer_;
  FormatOutline outline_;
  std::unordered_set<std::string> names_;
  std::size_t faults_ = 0;
  bool is_entry_faulty_ = false;
  std::optional<Span> comment_;  ///< one that took the newline of the line being read
  std::optional<Span> spanning_quote_;
};

// Tokens ------------------------------------------------------------------------------------------

void OutlineReader::find(Code code, Span where, std::string text, std::string remedy) {
  outline_.findings.push_back({code, where, std::move(text), std::move(remedy)});
}

void OutlineReader::advance() {
  lexer_.advance();
  note_comment();
  const format::Token& token = lexer_.token();
  const bool carries_text = token.kind >= format::kWord && token.kind <= format::kQuoted;
  if (!carries_text) return;
  if (token.kind == format::kQuoted && token.text.find('\n') != std::string_view::npos) {
    spanning_quote_ = lexer_.span();
  }
  const std::string_view text = token_text();
  if (text.size() <= kTokenBytesMax) return;
  find(Code::kTokenTooLong, lexer_.span(),
       util::format_text("this text has %zu bytes; 255 are read", text.size()),
       "shorten it, or split it in two");
}

/// A comment that begins behind other text of its line takes the line's end along.
void OutlineReader::note_comment() {
  const std::size_t from = lexer_.previous_end();
  const std::string_view gap = source_.text().substr(
      from, lexer_.token().position - std::min(from, lexer_.token().position));
  const std::size_t slashes = gap.substr(0, gap.find('\n')).find("//");
  const bool is_first_of_line = from == source_.line_start(source_.line_of(from));
  if (slashes == std::string_view::npos || is_first_of_line) return;
  comment_ = Span{from + slashes, gap.find('\n') - slashes};
}

PlacedWord OutlineReader::take_word() {
  PlacedWord word{std::string(token_text()), lexer_.span()};
  if (word.text.size() > kTokenBytesMax) word.text = "???";
  advance();
  return word;
}

std::string OutlineReader::seen() const {
  if (at(format::kNewline)) return "the line ends";
  if (at(format::kEndOfFile)) return "the file ends";
  return quoted(lexer_.token().text) + " stands here";
}

// Faults ------------------------------------------------------------------------------------------

void OutlineReader::fault(Span where, std::string text, std::string remedy) {
  ++faults_;
  is_entry_faulty_ = true;
  find(Code::kSyntax, where, std::move(text), std::move(remedy));
}

void OutlineReader::fault_here(std::string text, std::string remedy) {
  fault(lexer_.span(), std::move(text), std::move(remedy));
}

bool OutlineReader::fail_to_next_format(std::string text, std::string remedy) {
  fault_here(std::move(text), std::move(remedy));
  skip_to_format();
  return false;
}

/// The token at fault is passed over even when it reads FORMAT.
void OutlineReader::skip_to_format() {
  lexer_.end_format();
  const std::size_t line = source_.line_of(lexer_.token().position);
  lexer_.restart_between_entries(source_.line_start(line + 1));
  const auto begins_line = [this] {
    const std::size_t position = lexer_.token().position;
    const std::size_t start = source_.line_start(source_.line_of(position));
    return source_.text().substr(start, position - start).find_first_not_of(" \t\v\f") ==
           std::string_view::npos;
  };
  do {
    lexer_.advance();
  } while (!at(format::kEndOfFile) && !(at(format::kFormat) && begins_line()));
}

/// For a line that was read without a fault all the same.
void OutlineReader::report_comment() {
  if (!comment_) return;
  find(Code::kCommentTakesNewline, *comment_,
       "a comment behind other text takes the end of the line along: the next line is read as part "
       "of this one",
       "give it a line of its own");
  comment_.reset();
}

std::string OutlineReader::comment_hint() const {
  if (!comment_) return "";
  return util::format_text(
      "; the comment on line %zu took the end of its line along: give it a line of its own",
      source_.line_of(comment_->position));
}

// The file ----------------------------------------------------------------------------------------

/// People mix up the two languages, and the two files on a command line.
std::string remedy_between_entries(std::string_view word) {
  if (word == "CLASS" || word == "MAP_DEFAULT") {
    return "this begins a class: classes have a file of their own, which is named behind --cds";
  }
  if (word.starts_with("\xEF\xBB\xBF")) {
    return "the file begins with a byte order mark: save it without";
  }
  if (word.starts_with('#')) {
    return "a comment begins with // or with /* and a blank; # is for class files";
  }
  return "only FORMAT begins an entry; a comment begins with // or with /* and a blank";
}

FormatOutline OutlineReader::read() {
  advance();
  while (!at(format::kEndOfFile) && faults_ < kFaultsMax) {
    if (at(format::kFormat)) {
      read_entry();
    } else {
      fail_to_next_format(quoted(lexer_.token().text) + " stands between entries",
                          remedy_between_entries(lexer_.token().text));
    }
  }
  return std::move(outline_);
}

void OutlineReader::read_entry() {
  is_entry_faulty_ = false;
  comment_.reset();
  lexer_.begin_format();
  advance();
  if (!at(format::kWord)) {
    fail_to_next_format("FORMAT needs a name, but " + seen(), "write FORMAT and a name");
    return;
  }
  outline_.entries.emplace_back();
  entry().name = take_word();
  names_.insert(entry().name.text);
  if (read_format_name_line() && read_format_line()) read_slots();
  entry().is_whole = !is_entry_faulty_;
}

bool OutlineReader::read_format_name_line() {
  if (at(format::kFollows) && !read_parent()) return false;
  if (at(format::kNewline)) return true;
  if (at(',')) {
    return fail_to_next_format("a FORMAT follows one other at most", "leave the others out");
  }
  return fail_to_next_format("the FORMAT line should end, but " + seen(),
                             "write FORMAT NAME or FORMAT NAME FOLLOWS PARENT" + comment_hint());
}

bool OutlineReader::read_parent() {
  advance();
  if (!at(format::kWord)) {
    return fail_to_next_format("FOLLOWS needs a name, but " + seen(),
                               "name a FORMAT that stands above");
  }
  const PlacedWord parent = take_word();
  entry().parent = parent;
  if (names_.contains(parent.text)) return true;
  find(Code::kUnknownParent, parent.where, "no FORMAT " + quoted(parent.text) + " stands above",
       "FOLLOWS names a FORMAT that stands earlier in the file");
  is_entry_faulty_ = true;
  return true;
}

bool OutlineReader::read_format_line() {
  advance();
  entry().format_line = lexer_.span();
  while (at(format::kWord) || at(format::kSpec) || at(format::kBlank)) {
    take_piece();
  }
  entry().format_line.length = lexer_.token().position - entry().format_line.position;
  report_comment();
  if (at(format::kNewline) && !entry().pieces.empty()) return true;
  if (at(format::kEndOfFile))
    return fail_to_next_format("the file ends inside a FORMAT", "write its lines and END");
  return fail_to_next_format("the format line is empty",
                             "write the message's text with %s in place of its words");
}

void OutlineReader::take_piece() {
  const bool is_variable = at(format::kSpec);
  EntryOutline& filled = entry();
  if (is_variable && filled.variable_count() >= FormatSpec::kValuesMax) {
    find(Code::kTooManyVariables, lexer_.span(), "a FORMAT has 64 variables at most",
         "leave out what no slot needs");
    is_entry_faulty_ = true;
  }
  if (is_variable) filled.variables.push_back(filled.pieces.size());
  filled.pieces.push_back({take_word(), is_variable});
}

void OutlineReader::read_slots() {
  advance();
  while (faults_ < kFaultsMax) {
    if (at(format::kEnd)) {
      const std::size_t end = lexer_.token().position;
      if (read_end()) return;
      lexer_.restart_between_entries(source_.line_start(source_.line_of(end) + 1));
      advance();
      return;
    }
    if (at(format::kEndOfFile)) {
      if (recover_missing_end({})) return;
      fault_here("the file ends inside FORMAT " + quoted(entry().name.text),
                 "write END on a line "
                 "of its own, and a newline behind it");
      return;
    }
    SlotLine slot;
    const OptionalFault line_fault = read_slot_line(slot);
    if (!line_fault) {
      take_slot(std::move(slot));
    } else if (!recover_missing_end(slot)) {
      recover_slot_line(*line_fault);
    } else {
      return;
    }
  }
}

/// END and its newline. The scanner is between entries from END on.
bool OutlineReader::read_end() {
  advance();
  if (at(format::kNewline)) {
    lexer_.end_format();
    advance();
    return true;
  }
  if (at(format::kEndOfFile)) {
    fault_here("the last END has no newline behind it",
               "end the file's last line with a newline" + comment_hint());
  } else {
    fault_here("END should stand alone, but " + seen(), "leave the rest out" + comment_hint());
  }
  return false;
}

// A slot line -------------------------------------------------------------------------------------

OutlineReader::OptionalFault OutlineReader::read_slot_line(SlotLine& slot) {
  comment_.reset();
  spanning_quote_.reset();
  if (at(format::kNewline)) {
    return LineFault{lexer_.span(), "a blank line inside an entry", "leave it out, or write //"};
  }
  if (!at(format::kWord)) {
    return LineFault{lexer_.span(), "a slot's name should stand here, but " + seen(),
                     "a slot line is NAME and $n, a word, a text in quotes, PRINTF or DEFAULT"};
  }
  slot.name = take_word();
  return read_slot_value(slot);
}

OutlineReader::OptionalFault OutlineReader::read_slot_value(SlotLine& slot) {
  if (at(format::kPrintf)) return read_printf(slot);
  if (at(format::kDefault)) {
    slot.kind = kMapDefault;
  } else if (at(format::kWord) && isVar(token_text())) {
    slot.kind = kMapVariable;
  } else if (!at(format::kWord) && !at(format::kQuoted)) {
    return missing_value(slot);
  }
  slot.value = take_word();
  return read_line_end("the slot line");
}

LineFault OutlineReader::missing_value(const SlotLine& slot) const {
  if (at('"')) return {lexer_.span(), "this text in quotes has no end", "close it with a quote"};
  return {lexer_.span(), "slot " + quoted(slot.name.text) + " needs a value, but " + seen(),
          at(format::kEnd)
              ? "END is a keyword here: quote it"
              : "write $n, a word, a text in quotes, PRINTF or DEFAULT" + comment_hint()};
}

OutlineReader::OptionalFault OutlineReader::read_printf(SlotLine& slot) {
  slot.kind = kMapPrint;
  advance();
  if (!at('(')) {
    return LineFault{lexer_.span(), "PRINTF needs a parenthesis, but " + seen(),
                     "write PRINTF(\"format\", slot, ...)"};
  }
  advance();
  if (!at(format::kQuoted)) {
    return LineFault{lexer_.span(), "the format of PRINTF is a text in quotes, but " + seen(),
                     "write PRINTF(\"format\", slot, ...)"};
  }
  slot.value = take_word();
  if (OptionalFault line_fault = read_arguments(slot)) return line_fault;
  return read_line_end("the slot line");
}

OutlineReader::OptionalFault OutlineReader::read_arguments(SlotLine& slot) {
  while (at(',')) {
    advance();
    if (!at(format::kWord)) {
      return LineFault{lexer_.span(), "an argument of PRINTF is the name of a slot, but " + seen(),
                       "name a slot of this FORMAT, without quotes"};
    }
    slot.arguments.push_back(take_word());
  }
  if (!at(')')) {
    return LineFault{lexer_.span(), "PRINTF should go on with a comma or end, but " + seen(),
                     "write PRINTF(\"format\", slot, ...)"};
  }
  advance();
  return std::nullopt;
}

OutlineReader::OptionalFault OutlineReader::read_line_end(std::string_view what) {
  if (at(format::kNewline)) {
    advance();
    return std::nullopt;
  }
  return LineFault{
      lexer_.span(), std::string(what) + " should end, but " + seen(),
      (comment_ ? std::string("one value a slot") : "put a value of several words in quotes") +
          comment_hint()};
}

void OutlineReader::take_slot(SlotLine slot) {
  check_position(slot);
  report_comment();
  if (spanning_quote_) {
    find(Code::kQuoteSpansLines, *spanning_quote_, "a text in quotes that ends on a later line",
         "close it on this line, unless the newline is wanted in the event");
  }
  if (slot.name.text == "FORMAT") {
    find(Code::kFormatAsSlot, slot.name.where, "this line is read as a slot named FORMAT",
         "write END before it");
  }
  entry().slots.push_back(std::move(slot));
}

void OutlineReader::check_position(const SlotLine& slot) {
  if (slot.kind != kMapVariable) return;
  const int position = slot.position();
  const int count = entry().variable_count();
  if (position >= 1 && position <= count) return;
  find(Code::kVariableOutOfRange, slot.value.where,
       "slot " + quoted(slot.slot_name()) + " reads " + slot.value.text +
           ", but this format line has " + counted(entry().variables.size(), "variable"),
       util::format_text("add a variable to line %zu",
                         source_.line_of(entry().format_line.position)) +
           (count > 0 ? util::format_text(", or use $1 to $%d", count) : ""));
  is_entry_faulty_ = true;
}

/// Goes on at the next line. A text in quotes that swallowed the end of its line is the culprit
/// then, and the scanner is between entries behind an END that is no keyword.
void OutlineReader::recover_slot_line(const LineFault& line_fault) {
  if (spanning_quote_) {
    fault(*spanning_quote_, "a text in quotes that does not end on its line",
          "close it with a quote");
    lexer_.restart_in_slots(source_.line_start(source_.line_of(spanning_quote_->position) + 1));
  } else {
    fault(line_fault.where, line_fault.text, line_fault.remedy);
    const std::size_t line = source_.line_of(lexer_.token().position);
    const std::size_t next = at(format::kNewline) || !comment_ ? line + 1 : line;
    lexer_.restart_in_slots(source_.line_start(next));
  }
  advance();
}

/// True when the entry has no END: reading goes on at the FORMAT that was taken for a slot.
bool OutlineReader::recover_missing_end(const SlotLine& slot) {
  const auto is_format = [](const SlotLine& line) { return line.name.text == "FORMAT"; };
  if (is_format(slot)) {
    report_missing_end(slot.name);
    return true;
  }
  std::vector<SlotLine>& slots = entry().slots;
  const auto first = std::ranges::find_if(slots, is_format);
  if (first == slots.end()) return false;
  const PlacedWord format = first->name;
  slots.erase(first, slots.end());
  std::erase_if(outline_.findings,
                [&format](const Finding& f) { return f.where.position >= format.where.position; });
  report_missing_end(format);
  return true;
}

/// A blank line before the FORMAT is no fault of its own.
void OutlineReader::report_missing_end(const PlacedWord& format) {
  std::vector<Finding>& findings = outline_.findings;
  if (!findings.empty() && findings.back().code == Code::kSyntax &&
      is_blank_between(findings.back().where.position, format.where.position)) {
    findings.pop_back();
  }
  fault(format.where, "FORMAT " + quoted(entry().name.text) + " has no END",
        "write END on a line of its own before this one");
  lexer_.restart_between_entries(format.where.position);
  advance();
}

bool OutlineReader::is_blank_between(std::size_t begin, std::size_t end) const {
  return source_.text().substr(begin, end - begin).find_first_not_of(" \t\n") ==
         std::string_view::npos;
}

}  // namespace

// The outline -------------------------------------------------------------------------------------

std::string SlotLine::slot_name() const {
  return name.text.starts_with('-') ? name.text.substr(1) : name.text;
}

int SlotLine::position() const {
  return kind == kMapVariable ? util::saturating_atoi(std::string_view(value.text).substr(1)) : 0;
}

const Piece* EntryOutline::variable(int k) const {
  if (k < 1 || k > variable_count()) return nullptr;
  return &pieces[variables[static_cast<std::size_t>(k - 1)]];
}

const SlotLine* EntryOutline::slot_line(std::string_view slot_name) const {
  const SlotLine* found = nullptr;
  for (const SlotLine& line : slots) {
    if (line.slot_name() == slot_name) found = &line;
  }
  return found;
}

FormatOutline read_outline(const SourceText& source) { return OutlineReader(source).read(); }

}  // namespace zem::fmt
