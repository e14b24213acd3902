#include "adapters/libzemad/quoting.h"

#include <algorithm>
#include <array>

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

}  // namespace

bool needs_quotes(std::string_view text) {
  bool found = text.empty();
  // Without a way out of the loop: most texts need no quotes and are read to their end.
  for (const char byte : text) found |= kQuotedBytes[static_cast<unsigned char>(byte)];
  return found;
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
