#include "adapters/libzemad/quoting.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zem::kernel {
namespace {

constexpr char kQuote = '\'';
/// Sixteen bytes, which the compiler looks at in one step each (BM_Text: a fifth of the time).
using Block [[gnu::vector_size(16)]] = unsigned char;

template <class Number>
Number number_at(const char* bytes) {
  Number number{};
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

/// What has been found in a text so far.
class Finding {
 public:
  void look_at(const Block& bytes) {
    quoted_ |= (bytes <= ')') | (bytes == ',') | (bytes == ':') | (bytes == ';') | (bytes == '=') |
               (bytes == '{') | (bytes == '}');
    quotes_ |= bytes == kQuote;
  }
  [[nodiscard]] bool any_is_quoted() const { return any(quoted_); }
  [[nodiscard]] bool any_is_a_quote() const { return any(quotes_); }

 private:
  using Marks [[gnu::vector_size(16)]] = signed char;  ///< as comparing blocks gives it

  static bool any(const Marks& marks) {
    std::array<std::uint64_t, 2> halves{};
    std::memcpy(halves.data(), &marks, sizeof marks);
    return (halves[0] | halves[1]) != 0;
  }

  Marks quoted_{};
  Marks quotes_{};
};

/// A text of `sizeof(Half)` bytes to twice as many: its first and its last bytes, which overlap.
template <class Half>
class Few {
 public:
  explicit Few(std::string_view text)
      : last_at_(text.size() - sizeof(Half)),
        first_(number_at<Half>(text.data())),
        last_(number_at<Half>(text.data() + last_at_)) {}

  [[nodiscard]] Finding finding() const {
    constexpr std::size_t kCopies = sizeof(Block) / sizeof(Half) / 2;
    std::array<Half, 2 * kCopies> halves{};
    std::ranges::fill_n(halves.begin(), kCopies, first_);
    std::ranges::fill_n(halves.begin() + kCopies, kCopies, last_);
    Finding finding;
    finding.look_at(std::bit_cast<Block>(halves));
    return finding;
  }
  void copy(char* to) const {
    std::memcpy(to, &first_, sizeof first_);
    std::memcpy(to + last_at_, &last_, sizeof last_);
  }

 private:
  std::size_t last_at_;
  Half first_;
  Half last_;
};

/// Of less than 4 bytes; the empty text is like a blank.
class Least {
 public:
  explicit Least(std::string_view text) : text_(text) {}

  [[nodiscard]] Finding finding() const {
    std::array<char, sizeof(Block)> bytes{};
    bytes.fill(text_.empty() ? ' ' : text_.front());
    std::ranges::copy(text_, bytes.begin());
    Finding finding;
    finding.look_at(std::bit_cast<Block>(bytes));
    return finding;
  }
  void copy(char* to) const { std::ranges::copy(text_, to); }

 private:
  std::string_view text_;
};

/// Of 16 bytes or more; the last block overlaps the one before it.
class Many {
 public:
  explicit Many(std::string_view text) : text_(text) {}

  [[nodiscard]] Finding finding() const {
    Finding finding;
    for (std::size_t at = 0; at < last_at(); at += sizeof(Block)) finding.look_at(block(at));
    finding.look_at(block(last_at()));
    return finding;
  }
  void copy(char* to) const { std::memcpy(to, text_.data(), text_.size()); }

 private:
  [[nodiscard]] std::size_t last_at() const { return text_.size() - sizeof(Block); }
  [[nodiscard]] Block block(std::size_t at) const { return number_at<Block>(text_.data() + at); }

  std::string_view text_;
};

/// `ask`, which is told the text as one of its size.
template <class Ask>
auto with_size(std::string_view text, Ask ask) {
  if (text.size() >= sizeof(Block)) return ask(Many(text));
  if (text.size() >= 8) return ask(Few<std::uint64_t>(text));
  if (text.size() >= 4) return ask(Few<std::uint32_t>(text));
  return ask(Least(text));
}

char* write_doubling_quotes(std::string_view text, char* to) {
  *to++ = kQuote;
  for (const char byte : text) {
    if (byte == kQuote) *to++ = kQuote;
    *to++ = byte;
  }
  *to++ = kQuote;
  return to;
}

}  // namespace

bool needs_quotes(std::string_view text) {
  return with_size(text, [](const auto& sized) { return sized.finding().any_is_quoted(); });
}

/// Mostly there is nothing to double. Whether there are quotes at all is not decided, but counted:
/// values with and without them follow each other without a rule.
char* write_quoted(std::string_view text, char* to) {
  return with_size(text, [&](const auto& sized) {
    const Finding finding = sized.finding();
    if (finding.any_is_a_quote()) return write_doubling_quotes(text, to);
    const std::size_t quote = finding.any_is_quoted() ? 1 : 0;
    *to = kQuote;
    sized.copy(to + quote);
    to[quote + text.size()] = kQuote;
    return to + text.size() + 2 * quote;
  });
}

void quote(std::string_view text, std::string& out) {
  out.resize(quoted_bytes_max(text.size()));
  out.resize(static_cast<std::size_t>(write_doubling_quotes(text, out.data()) - out.data()));
}

}  // namespace zem::kernel
