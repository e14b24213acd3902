/// Every byte has a class, and the class says what happens to the word that is being gathered:
///
///   msg = PRINTF("%s from %s", $V2);   # comment
///   msg|=|PRINTF|(|%s from %s|,|$V2|)|;
///
/// Words are looked at when they end: references first, then numbers, then reserved words; what is
/// none of these is a string. Quoted strings are never looked at.
///
/// Nearly every token is one piece of the text, found in one go; no byte is copied for it. Pieces
/// that belong together although something stands between them, like the two of 'it''s', are
/// joined.
#include "adapters/libzemad/class_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

#include "adapters/libzemad/error.h"

namespace zem::kernel {

namespace {

enum class CharType : std::uint8_t {
  kIgnore,  ///< dropped, also inside a word
  kNewline,
  kQuote,
  kPunctuation,
  kBlank,
  kWord,
  kComment,
};

/// Indexed by unsigned byte.
constexpr auto kCharTypes = [] {
  std::array<CharType, 256> types{};
  for (std::size_t byte = 0x21; byte < types.size(); ++byte) types[byte] = CharType::kWord;
  types[0x7F] = CharType::kIgnore;
  types['\n'] = CharType::kNewline;
  for (const unsigned char byte : {'"', '\''}) types[byte] = CharType::kQuote;
  for (const unsigned char byte : {'\t', ' '}) types[byte] = CharType::kBlank;
  for (const unsigned char byte : std::string_view("!(),:;<=>[]{}")) {
    types[byte] = CharType::kPunctuation;
  }
  types['#'] = CharType::kComment;
  return types;
}();

CharType type_of(char byte) { return kCharTypes[static_cast<unsigned char>(byte)]; }

struct ReservedWord {
  std::string_view text;
  int token;
};
constexpr ReservedWord kReservedWords[] = {{"ATTR", TOKEN_ATTR},
                                           {"CLASS", TOKEN_CLASS},
                                           {"CONTAINS", TOKEN_CONTAINS},
                                           {"END", TOKEN_END},
                                           {"EXISTS", TOKEN_EXISTS},
                                           {"FETCH", TOKEN_FETCH},
                                           {"IPADDR", TOKEN_IPADDR},
                                           {"IPNAME", TOKEN_IPNAME},
                                           {"KEY", TOKEN_KEY},
                                           {"MAP", TOKEN_MAP},
                                           {"MAP_DEFAULT", TOKEN_MAP_DEFAULT},
                                           {"OID", TOKEN_OID},
                                           {"PREFIX", TOKEN_PREFIX},
                                           {"PRINTF", TOKEN_PRINTF},
                                           {"SELECT", TOKEN_SELECT},
                                           {"SUBSTR", TOKEN_SUBSTR},
                                           {"SUFFIX", TOKEN_SUFFIX},
                                           {"VALUE", TOKEN_VALUE}};
static_assert(std::size(kReservedWords) == 18);
static_assert(std::ranges::is_sorted(kReservedWords, {}, &ReservedWord::text));

/// The number that nothing but a few digits write; nothing for any other text, number or not.
std::optional<int> short_number(std::string_view text) {
  constexpr std::size_t kDigitsMax = 9;
  if (text.empty() || text.size() > kDigitsMax) return std::nullopt;
  int number = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = 10 * number + (digit - '0');
  }
  return number;
}

/// The number that `text` is as a whole, clamped to 32 bits. It may have a minus sign.
std::optional<int> whole_number(std::string_view text, int base) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (base == 10) {
    if (const auto number = short_number(text)) return number;
  }
  long value = 0;
  const char* const text_end = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), text_end, value, base);
  if (end != text_end || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range)
    return text[0] == '-' ? Limits::min() : Limits::max();
  return static_cast<int>(std::clamp<long>(value, Limits::min(), Limits::max()));
}

/// The token of a reference by the letter behind its `$`.
std::optional<int> reference_token(char letter) {
  switch (letter) {
    case 'N':
      return TOKEN_NAME_REF;
    case 'K':
      return TOKEN_KEY_REF;
    case 'V':
      return TOKEN_VALUE_REF;
    case 'F':
      return TOKEN_FETCH_REF;
    default:
      return std::nullopt;
  }
}

/// How many bytes of a word stand at the start of `text`.
std::size_t word_bytes(std::string_view text) {
  const auto* const end =
      std::ranges::find_if_not(text, [](char byte) { return type_of(byte) == CharType::kWord; });
  return static_cast<std::size_t>(end - text.begin());
}

bool begins_statement(int token) { return token == TOKEN_CLASS || token == TOKEN_MAP_DEFAULT; }

}  // namespace

ClassScanner::ClassScanner(std::string_view text, KeywordIndex keyword_index)
    : text_(text), keyword_index_(keyword_index) {}

ClassScanner::ClassScanner(ZEMAD_GetRoutineChar get_routine, KeywordIndex keyword_index)
    : keyword_index_(keyword_index) {
  for (int byte = get_routine(); byte >= 0; byte = get_routine()) {
    delivered_.push_back(static_cast<char>(byte));
  }
  text_ = delivered_;
}

// Lines -------------------------------------------------------------------------------------------

/// False at the end of the text.
bool ClassScanner::at_byte() { return cursor_ != line_end_ || next_line(); }

/// The line goes up to and including the next newline; false when nothing is left.
bool ClassScanner::next_line() {
  const std::size_t newline = text_.find('\n', cursor_);
  line_end_ = newline == std::string_view::npos ? text_.size() : newline + 1;
  if (log::listens(log::kParser, log::kNormal)) trace_line();
  return cursor_ != line_end_;
}

void ClassScanner::trace_line() const {
  std::string shown(rest_of_line());
  if (shown.ends_with('\n')) shown.pop_back();
  std::FILE* trace = ZEMAD_ErrorStart(log::kParser, log::kNormal);
  if (trace != nullptr) std::fprintf(trace, "Line %3d: %s\n", line_, shown.c_str());
  ZEMAD_ErrorEnd(trace);
}

// Tokens ------------------------------------------------------------------------------------------

int ClassScanner::yylex() {
  int token = yylex_traced();
  while (skips_to_statement_ && token != kEndOfInput && !begins_statement(token)) {
    token = yylex_traced();
  }
  skips_to_statement_ = false;
  return token;
}

int ClassScanner::yylex_traced() {
  const int token = yylexreal();
  if (!log::listens(log::kParser, log::kVerbose)) return token;
  std::FILE* trace = ZEMAD_ErrorStart(log::kParser, log::kVerbose);
  if (trace != nullptr) std::fprintf(trace, " TOKEN:%d \"%s\"\n", token, text());
  ZEMAD_ErrorEnd(trace);
  return token;
}

/// Deliberate: a comment does not end a word, and a word that the end of the input cuts off is
/// dropped (ClassScanner/Tokens: CommentDoesNotEndAWord, LastLineWithoutNewline).
int ClassScanner::yylexreal() {
  token_ = {};
  for (;;) {
    const bool has_word = !token_.empty();
    if (!has_word) position_ = cursor_;
    if (!at_byte()) return end_input();
    const char byte = text_[cursor_];
    switch (type_of(byte)) {
      case CharType::kIgnore:
        ++cursor_;
        break;
      case CharType::kNewline:
        ++line_;
        [[fallthrough]];
      case CharType::kBlank:
        ++cursor_;
        if (has_word) return find_reserved_word();
        break;
      case CharType::kQuote:
        ++cursor_;
        return quoted_string(byte);
      case CharType::kPunctuation:
        if (has_word) return find_reserved_word();
        take(1);
        return static_cast<unsigned char>(byte);
      case CharType::kWord:
        take(word_bytes(rest_of_line()));
        break;
      case CharType::kComment:
        skip_comment();
        break;
    }
  }
}

int ClassScanner::end_input() {
  token_ = {};
  return kEndOfInput;
}

/// The opening delimiter has been read. A word that stands right before it is part of the string.
int ClassScanner::quoted_string(char delimiter) {
  while (at_byte()) {
    const std::string_view line = rest_of_line();
    const std::size_t length = line.find(delimiter);
    take(std::min(length, line.size()));
    if (length == std::string_view::npos) continue;
    ++cursor_;
    if (!at_byte() || text_[cursor_] != delimiter) {
      token_ = token_.substr(0, token_.find('\0'));
      return TOKEN_STRING;
    }
    take(1);
  }
  return end_input();
}

/// To the end of the line. At the end of the text there is one more look for a line, which shows in
/// the trace.
void ClassScanner::skip_comment() {
  cursor_ = line_end_;
  if (text_[cursor_ - 1] == '\n') {
    ++line_;
  } else {
    next_line();
  }
}

void ClassScanner::join(std::string_view taken) {
  if (token_.data() != joined_.data()) joined_ = token_;
  joined_.append(taken.substr(0, kTextBytesMax - joined_.size()));
  token_ = joined_;
}

// Words -------------------------------------------------------------------------------------------

int ClassScanner::find_reserved_word() {
  if (!reserved_words_on_) return TOKEN_STRING;
  if (const auto token = find_reference()) return *token;
  if (const auto token = find_number()) return *token;
  if (token_[0] < 'A' || token_[0] > 'Z') return TOKEN_STRING;

  const auto* word = std::ranges::lower_bound(kReservedWords, token_, {}, &ReservedWord::text);
  if (word == std::end(kReservedWords) || word->text != token_) return TOKEN_STRING;
  number_ = word->token;
  return word->token;
}

/// $N1, $K1, $V1, $F1 or $KEYWORD. A number of 0 is none, so that $V0 is looked up as keyword V0.
std::optional<int> ClassScanner::find_reference() {
  if (token_.size() < 2 || token_[0] != '$') return std::nullopt;
  if (const auto token = reference_token(token_[1])) {
    const bool has_plus = token_.substr(2).starts_with('+') && !token_.substr(3).starts_with('-');
    number_ = whole_number(token_.substr(has_plus ? 3 : 2), 10).value_or(0);
    if (number_ != 0) return token;
  }
  number_ = keyword_index_(std::string(token_.substr(1)).c_str());
  return number_ < 0 ? std::nullopt : std::optional<int>(TOKEN_KEYWORD);
}

/// Decimal, or hexadecimal behind 0x; a leading 0 alone does not mean octal.
std::optional<int> ClassScanner::find_number() {
  const bool looks_so = token_[0] == '-' || (token_[0] >= '0' && token_[0] <= '9');
  if (!looks_so) return std::nullopt;
  const bool is_hexadecimal = token_.starts_with("0x") || token_.starts_with("0X");
  if (is_hexadecimal && token_.substr(2).starts_with('-')) return std::nullopt;
  const auto value = is_hexadecimal ? whole_number(token_.substr(2), 16) : whole_number(token_, 10);
  if (!value) return std::nullopt;
  number_ = *value;
  return TOKEN_NUMBER;
}

}  // namespace zem::kernel
