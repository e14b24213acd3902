/// The text is read line by line and handed out byte by byte, with one byte of push-back. Every
/// byte has a class, and the class says what happens to the word that is being gathered:
///
///   msg = PRINTF("%s from %s", $V2);   # comment
///   msg|=|PRINTF|(|%s from %s|,|$V2|)|;
///
/// Words are looked at when they end: references first, then numbers, then reserved words; what is
/// none of these is a string. Quoted strings are never looked at.
#include "adapters/libzemad/class_scanner.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <utility>

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

/// The number that `text` is as a whole, clamped to 32 bits.
std::optional<int> whole_number(const char* text, int base) {
  char* end = nullptr;
  const long value = std::strtol(text, &end, base);
  if (end == text || *end != '\0') return std::nullopt;
  return static_cast<int>(std::clamp<long>(value, std::numeric_limits<std::int32_t>::min(),
                                           std::numeric_limits<std::int32_t>::max()));
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

bool begins_statement(int token) { return token == TOKEN_CLASS || token == TOKEN_MAP_DEFAULT; }

}  // namespace

ClassScanner::ClassScanner(ZEMAD_GetRoutineChar get_routine, KeywordIndex keyword_index)
    : get_routine_(get_routine), keyword_index_(keyword_index) {
  text_.reserve(kTextBytesMax);
}

// Bytes -------------------------------------------------------------------------------------------

int ClassScanner::mygetchar() {
  if (unchar_ == kEndOfInput && next_byte_ == line_buffer_.size() && !read_line()) {
    return kEndOfInput;
  }
  ++consumed_;
  if (unchar_ != kEndOfInput) return std::exchange(unchar_, kEndOfInput);
  return static_cast<unsigned char>(line_buffer_[next_byte_++]);
}

void ClassScanner::myungetchar(int byte) {
  unchar_ = byte;
  if (byte != kEndOfInput) --consumed_;
}

/// Up to and including the next newline; false when nothing is left.
bool ClassScanner::read_line() {
  line_buffer_.clear();
  next_byte_ = 0;
  int byte = 0;
  while (byte != '\n' && (byte = get_routine_()) != kEndOfInput) {
    line_buffer_.push_back(static_cast<char>(byte));
  }
  if (log::listens(log::kParser, log::kNormal)) trace_line();
  return !line_buffer_.empty();
}

void ClassScanner::trace_line() const {
  std::string shown = line_buffer_;
  if (shown.ends_with('\n')) shown.pop_back();
  std::FILE* trace = ZEMAD_ErrorStart(log::kParser, log::kNormal);
  if (trace != nullptr) std::fprintf(trace, "Line %3d: %s\n", line_, shown.c_str());
  ZEMAD_ErrorEnd(trace);
}

/// The bytes behind the one that was read last, as far as they please and the line goes: most bytes
/// of a file are in words and strings.
template <class Pleases>
void ClassScanner::append_while(Pleases pleases) {
  const std::string_view line = std::string_view(line_buffer_).substr(next_byte_);
  const auto end = std::ranges::find_if_not(line, pleases);
  const auto bytes = static_cast<std::size_t>(end - line.begin());
  text_.append(line.substr(0, std::min(bytes, kTextBytesMax - text_.size())));
  next_byte_ += bytes;
  consumed_ += bytes;
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
  text_.clear();
  for (;;) {
    if (text_.empty()) position_ = consumed_;
    const int byte = mygetchar();
    if (byte == kEndOfInput) {
      text_.clear();
      return kEndOfInput;
    }
    const bool has_word = !text_.empty();
    switch (type_of(static_cast<char>(byte))) {
      case CharType::kIgnore:
        break;
      case CharType::kNewline:
        ++line_;
        if (has_word) return find_reserved_word();
        break;
      case CharType::kQuote:
        return quoted_string(byte);
      case CharType::kPunctuation:
        if (has_word) {
          myungetchar(byte);
          return find_reserved_word();
        }
        append(byte);
        return byte;
      case CharType::kBlank:
        if (has_word) return find_reserved_word();
        break;
      case CharType::kWord:
        append(byte);
        append_while([](char next) { return type_of(next) == CharType::kWord; });
        break;
      case CharType::kComment:
        skip_comment();
        break;
    }
  }
}

/// The opening delimiter has been read. A word that stands right before it is part of the string.
int ClassScanner::quoted_string(int delimiter) {
  for (int byte = mygetchar(); byte != kEndOfInput; byte = mygetchar()) {
    if (byte == delimiter) {
      const int next = mygetchar();
      if (next != delimiter) {
        myungetchar(next);
        return TOKEN_STRING;
      }
    }
    append(byte);
    append_while([&](char next) { return static_cast<unsigned char>(next) != delimiter; });
  }
  text_.clear();
  return kEndOfInput;
}

void ClassScanner::skip_comment() {
  int byte = 0;
  do {
    byte = mygetchar();
  } while (byte != '\n' && byte != kEndOfInput);
  if (byte == '\n') ++line_;
}

/// What does not fit is dropped without notice.
void ClassScanner::append(int byte) {
  if (text_.size() < kTextBytesMax) text_.push_back(static_cast<char>(byte));
}

// Words -------------------------------------------------------------------------------------------

int ClassScanner::find_reserved_word() {
  if (!reserved_words_on_) return TOKEN_STRING;
  if (const auto token = find_reference()) return *token;
  if (const auto token = find_number()) return *token;
  if (text_[0] < 'A' || text_[0] > 'Z') return TOKEN_STRING;

  const auto* word = std::ranges::lower_bound(kReservedWords, text_, {}, &ReservedWord::text);
  if (word == std::end(kReservedWords) || word->text != text_) return TOKEN_STRING;
  number_ = word->token;
  return word->token;
}

/// $N1, $K1, $V1, $F1 or $KEYWORD. A number of 0 is none, so that $V0 is looked up as keyword V0.
std::optional<int> ClassScanner::find_reference() {
  if (text_.size() < 2 || text_[0] != '$') return std::nullopt;
  if (const auto token = reference_token(text_[1])) {
    number_ = whole_number(text_.c_str() + 2, 10).value_or(0);
    if (number_ != 0) return token;
  }
  number_ = keyword_index_(text_.c_str() + 1);
  return number_ < 0 ? std::nullopt : std::optional<int>(TOKEN_KEYWORD);
}

/// Decimal, or hexadecimal behind 0x; a leading 0 alone does not mean octal.
std::optional<int> ClassScanner::find_number() {
  const bool looks_so = text_[0] == '-' || (text_[0] >= '0' && text_[0] <= '9');
  if (!looks_so) return std::nullopt;
  const bool is_hexadecimal = text_.starts_with("0x") || text_.starts_with("0X");
  const auto value = whole_number(text_.c_str(), is_hexadecimal ? 16 : 10);
  if (!value) return std::nullopt;
  number_ = *value;
  return TOKEN_NUMBER;
}

}  // namespace zem::kernel
