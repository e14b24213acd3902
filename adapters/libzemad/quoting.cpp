#include "adapters/libzemad/quoting.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zem::kernel {
namespace {

constexpr char kQuote = '\'';
constexpr std::size_t kAllQuotedBelow = 40;  ///< controls, the blank, and ! " # $ % & '

constexpr std::array<bool, 256> make_quoted_bytes() {
  std::array<bool, 256> quoted{};
  for (std::size_t byte = 0; byte < kAllQuotedBelow; ++byte) quoted[byte] = true;
  for (const unsigned char byte : std::string_view("(),:;={}")) quoted[byte] = true;
  return quoted;
}
constexpr std::array<bool, 256> kQuotedBytes = make_quoted_bytes();

/// Sixteen bytes, which the compiler looks at in one step each (BM_Text: a fifth of the time).
using Block [[gnu::vector_size(16)]] = unsigned char;

bool any_is_quoted(const Block& bytes) {
  const auto found = (bytes <= ')') | (bytes == ',') | (bytes == ':') | (bytes == ';') |
                     (bytes == '=') | (bytes == '{') | (bytes == '}');
  std::array<std::uint64_t, 2> halves{};
  std::memcpy(halves.data(), &found, sizeof found);
  return (halves[0] | halves[1]) != 0;
}

template <class Number>
Number number_at(const char* bytes) {
  Number number = 0;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

/// The first and the last bytes of a text of `sizeof(Half)` to twice as many.
template <class Half>
bool any_is_quoted_of_few(std::string_view text) {
  std::uint64_t first = number_at<Half>(text.data());
  std::uint64_t last = number_at<Half>(text.data() + text.size() - sizeof(Half));
  if (sizeof(Half) == 4) first = last = first | last << 32;
  return any_is_quoted(std::bit_cast<Block>(std::array{first, last}));
}

/// Of 16 bytes or more; the last block overlaps the one before it.
bool any_is_quoted_of_many(std::string_view text) {
  Block block{};
  for (std::size_t at = 0; at + sizeof block < text.size(); at += sizeof block) {
    std::memcpy(&block, text.data() + at, sizeof block);
    if (any_is_quoted(block)) return true;
  }
  std::memcpy(&block, text.data() + text.size() - sizeof block, sizeof block);
  return any_is_quoted(block);
}

}  // namespace

bool needs_quotes(std::string_view text) {
  if (text.size() >= sizeof(Block)) return any_is_quoted_of_many(text);
  if (text.size() >= 8) return any_is_quoted_of_few<std::uint64_t>(text);
  if (text.size() >= 4) return any_is_quoted_of_few<std::uint32_t>(text);
  return text.empty() || std::ranges::any_of(text, [](char byte) {
           return kQuotedBytes[static_cast<unsigned char>(byte)];
         });
}

void quote(std::string_view text, std::string& out) {
  out.assign(1, kQuote);
  for (const char byte : text) {
    if (byte == kQuote) out += kQuote;
    out += byte;
  }
  out += kQuote;
}

/// From the end to the beginning, so that no byte is written over before it was moved. Mostly there
/// is nothing to double, and then all moves at once.
void quote_from(std::string& text, std::size_t begin) {
  const std::size_t end = text.size();
  const auto part = std::string_view(text).substr(begin);
  if (!needs_quotes(part)) return;
  const auto doubled = static_cast<std::size_t>(std::ranges::count(part, kQuote));
  text.resize(end + doubled + 2, kQuote);
  if (doubled == 0) {
    std::copy_backward(text.begin() + static_cast<std::ptrdiff_t>(begin),
                       text.begin() + static_cast<std::ptrdiff_t>(end), text.end() - 1);
  } else {
    std::size_t to = text.size() - 1;
    for (std::size_t from = end; from-- > begin;) {
      const char byte = text[from];
      text[--to] = byte;
      if (byte == kQuote) text[--to] = kQuote;
    }
  }
  text[begin] = kQuote;
}

}  // namespace zem::kernel
