#include "tests/support/plain_class_scanner.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <utility>

#include "adapters/libzemad/error.h"

namespace zem::test {

namespace {

using kernel::ClassScanner;

enum class CharType { kIgnore, kNewline, kQuote, kPunctuation, kBlank, kWord, kComment };

CharType type_of(int byte) {
  if (byte == '\n') return CharType::kNewline;
  if (byte == '\t' || byte == ' ') return CharType::kBlank;
  if (byte == '"' || byte == '\'') return CharType::kQuote;
  if (byte == '#') return CharType::kComment;
  if (byte < ' ' || byte == 0x7F) return CharType::kIgnore;
  const bool is_punctuation =
      std::string_view("!(),:;<=>[]{}").find(static_cast<char>(byte)) != std::string_view::npos;
  return is_punctuation ? CharType::kPunctuation : CharType::kWord;
}

const std::map<std::string, int> kReservedWords = {
    {"ATTR", 270},        {"CLASS", 265},  {"CONTAINS", 282}, {"END", 283},    {"EXISTS", 281},
    {"FETCH", 268},       {"IPADDR", 276}, {"IPNAME", 275},   {"KEY", 271},    {"MAP", 269},
    {"MAP_DEFAULT", 266}, {"OID", 264},    {"PREFIX", 279},   {"PRINTF", 273}, {"SELECT", 267},
    {"SUBSTR", 274},      {"SUFFIX", 280}, {"VALUE", 272}};

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

}  // namespace

int PlainClassScanner::mygetchar() {
  if (unchar_ == kEndOfInput && next_byte_ == line_buffer_.size() && !read_line()) {
    return kEndOfInput;
  }
  ++consumed_;
  if (unchar_ != kEndOfInput) return std::exchange(unchar_, kEndOfInput);
  return static_cast<unsigned char>(line_buffer_[next_byte_++]);
}

void PlainClassScanner::myungetchar(int byte) {
  unchar_ = byte;
  if (byte != kEndOfInput) --consumed_;
}

bool PlainClassScanner::read_line() {
  const std::size_t newline = rest_.find('\n');
  line_buffer_ = rest_.substr(0, newline == std::string_view::npos ? newline : newline + 1);
  rest_.remove_prefix(line_buffer_.size());
  next_byte_ = 0;
  if (log::listens(log::kParser, log::kNormal)) {
    std::FILE* trace = ZEMAD_ErrorStart(log::kParser, log::kNormal);
    std::string shown = line_buffer_;
    if (shown.ends_with('\n')) shown.pop_back();
    if (trace != nullptr) std::fprintf(trace, "Line %3d: %s\n", line_, shown.c_str());
    ZEMAD_ErrorEnd(trace);
  }
  return !line_buffer_.empty();
}

int PlainClassScanner::yylexreal() {
  text_.clear();
  for (;;) {
    if (text_.empty()) position_ = consumed_;
    const int byte = mygetchar();
    if (byte == kEndOfInput) {
      text_.clear();
      return kEndOfInput;
    }
    const bool has_word = !text_.empty();
    switch (type_of(byte)) {
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
        break;
      case CharType::kComment:
        skip_comment();
        break;
    }
  }
}

/// The opening delimiter has been read. A word that stands right before it is part of the string.
int PlainClassScanner::quoted_string(int delimiter) {
  for (int byte = mygetchar(); byte != kEndOfInput; byte = mygetchar()) {
    if (byte == delimiter) {
      const int next = mygetchar();
      if (next != delimiter) {
        myungetchar(next);
        return TOKEN_STRING;
      }
    }
    append(byte);
  }
  text_.clear();
  return kEndOfInput;
}

void PlainClassScanner::skip_comment() {
  int byte = 0;
  do {
    byte = mygetchar();
  } while (byte != '\n' && byte != kEndOfInput);
  if (byte == '\n') ++line_;
}

/// What does not fit is dropped without notice.
void PlainClassScanner::append(int byte) {
  if (text_.size() < ClassScanner::kTextBytesMax) text_.push_back(static_cast<char>(byte));
}

int PlainClassScanner::find_reserved_word() {
  if (!reserved_words_on_) return TOKEN_STRING;
  if (const auto token = find_reference()) return *token;
  if (const auto token = find_number()) return *token;
  const auto word = kReservedWords.find(text_);
  if (word == kReservedWords.end()) return TOKEN_STRING;
  return number_ = word->second;
}

/// $N1, $K1, $V1, $F1 or $KEYWORD. A number of 0 is none, so that $V0 is looked up as keyword V0.
std::optional<int> PlainClassScanner::find_reference() {
  if (text_.size() < 2 || text_[0] != '$') return std::nullopt;
  if (const auto token = reference_token(text_[1])) {
    number_ = whole_number(text_.c_str() + 2, 10).value_or(0);
    if (number_ != 0) return token;
  }
  number_ = keyword_index_(text_.c_str() + 1);
  return number_ < 0 ? std::nullopt : std::optional<int>(TOKEN_KEYWORD);
}

/// Decimal, or hexadecimal behind 0x; a leading 0 alone does not mean octal.
std::optional<int> PlainClassScanner::find_number() {
  const bool looks_so = text_[0] == '-' || (text_[0] >= '0' && text_[0] <= '9');
  if (!looks_so) return std::nullopt;
  const bool is_hexadecimal = text_.starts_with("0x") || text_.starts_with("0X");
  const auto value = whole_number(text_.c_str(), is_hexadecimal ? 16 : 10);
  if (!value) return std::nullopt;
  number_ = *value;
  return TOKEN_NUMBER;
}

}  // namespace zem::test
