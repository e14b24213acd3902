#include "adapters/libzemad/quoting.h"

#include <string>

#include "adapters/libzemad/zem_io.h"
#include "tests/support/table.h"

namespace {

struct QuotingCase {
  const char* name;
  const char* text;
  const char* quoted;
};

class Quoting : public testing::TestWithParam<QuotingCase> {};

TEST_P(Quoting, OfATextInAnEvent) {
  const char* text = GetParam().text;
  const char* quoted = ZEMAD_quote_string(text);
  EXPECT_STREQ(quoted, GetParam().quoted);
  const bool is_unchanged = std::string_view(text) == GetParam().quoted;
  EXPECT_EQ(quoted == text, is_unchanged) << "what needs no quotes is not copied";
}

const QuotingCase kQuotingCases[] = {{"Empty", "", "''"},
                                     {"Word", "abc", "abc"},
                                     {"Apostrophe", "it's (x)", "'it''s (x)'"},
                                     {"OnlyQuotes", "''", "''''''"},
                                     {"BytesFrom128",
                                      "\xc3\xbc"
                                      "ber\xff",
                                      "\xc3\xbc"
                                      "ber\xff"},
                                     {"NewlineStaysRaw", "a\nb", "'a\nb'"}};
INSTANTIATE_TEST_SUITE_P(Table, Quoting, testing::ValuesIn(kQuotingCases), zem::test::kRowName);

TEST(QuotingBytes, AreThoseBelow40AndEightMore) {
  for (int byte = 0; byte < 256; ++byte) {
    const char text[] = {static_cast<char>(byte)};
    const bool is_separator =
        byte != 0 && std::string_view("(),:;={}").find(text[0]) != std::string_view::npos;
    EXPECT_EQ(zem::kernel::needs_quotes({text, 1}), byte < 40 || is_separator) << byte;
  }
}

/// `text` in quotes, one byte after the other.
std::string between_quotes(std::string_view text) {
  std::string out = "'";
  for (const char byte : text) out.append(byte == '\'' ? 2 : 1, byte);
  return out + '\'';
}

std::string written(std::string_view text) {
  std::string out(zem::kernel::quoted_bytes_max(text.size()), '#');
  const char* const end = zem::kernel::write_quoted(text, out.data());
  return out.substr(0, static_cast<std::size_t>(end - out.data()));
}

/// Longer texts are looked at and copied in blocks, so each byte is tried at each place of texts of
/// all lengths about a block's.
TEST(QuotingBytes, AreFoundWhereverTheyStand) {
  for (int byte = 0; byte < 256; ++byte) {
    const char text[] = {static_cast<char>(byte)};
    const bool is_quoted = zem::kernel::needs_quotes({text, 1});
    for (std::size_t length = 1; length <= 40; ++length) {
      for (std::size_t at = 0; at < length; ++at) {
        std::string around =
            std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMN").substr(0, length);
        around[at] = text[0];
        ASSERT_EQ(zem::kernel::needs_quotes(around), is_quoted) << byte << " at " << at;
        ASSERT_EQ(written(around), is_quoted ? between_quotes(around) : around)
            << byte << " at " << at;
      }
    }
  }
}

}  // namespace
