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

}  // namespace zem::kernel
