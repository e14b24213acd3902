#include "tools/fmt/json.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "tests/support/table.h"

namespace zem::fmt {
namespace {

struct JsonCase {
  const char* name;
  std::string_view text;
  const char* json;
};

class Json : public testing::TestWithParam<JsonCase> {};

TEST_P(Json, String) {
  TextBuffer out;
  append_json(out, GetParam().text);
  EXPECT_EQ(out.view(), GetParam().json);
}

const JsonCase kJsonCases[] = {
    {"Empty", "", R"("")"},
    {"QuotesAndBackslashes", R"(say "\x")", R"("say \"\\x\"")"},
    {"ControlCharacters", "a\tb\n\x01\x7f", R"("a\tb\n\u0001\u007f")"},
    {"Utf8Stays", "\u00fc \u20ac \U0001F600", "\"\u00fc \u20ac \U0001F600\""},
    {"Latin1", "caf\xe9!", R"("caf\udce9!")"},
    {"CutInTheMiddle", "\xe2\x82", R"("\udce2\udc82")"},
    {"OverlongSlash", "\xc0\xaf", R"("\udcc0\udcaf")"},
    {"EncodedSurrogate", "\xed\xb3\xa9", R"("\udced\udcb3\udca9")"},
    {"BeyondTheLast", "\xf4\x90\x80\x80", R"("\udcf4\udc90\udc80\udc80")"}};
INSTANTIATE_TEST_SUITE_P(Texts, Json, testing::ValuesIn(kJsonCases), test::kRowName);

/// What a text is made of: pieces that are escaped by themselves as they are within a text, each
/// with the form that it has there.
constexpr std::pair<std::string_view, std::string_view> kPieces[] = {
    {"a", "a"},
    {"seventeen letters", "seventeen letters"},
    {" ", " "},
    {"~", "~"},
    {"\"", "\\\""},
    {"\\", "\\\\"},
    {"\n", "\\n"},
    {"\x1f", "\\u001f"},
    {"\x7f", "\\u007f"},
    {"\u00fc", "\u00fc"},
    {"\u20ac", "\u20ac"},
    {"\U0001F600", "\U0001F600"},
    {"\xe9 ", "\\udce9 "},
    {"\xc0", "\\udcc0"}};

TEST(JsonString, OfManyPieces) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::minstd_rand random(seed);
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    std::string expected;
    for (auto count = random() % 12; count > 0; --count) {
      const auto& [piece, form] = kPieces[random() % std::size(kPieces)];
      text += piece;
      expected += form;
    }
    TextBuffer out;
    const bool is_plain = append_escaped(out, text);
    ASSERT_EQ(out.view(), expected) << "of " << testing::PrintToString(text);
    const bool is_ascii = std::ranges::all_of(text, [](char c) { return c >= 0; });
    ASSERT_EQ(is_plain, text == expected && is_ascii) << expected;
  }
}

/// Texts are looked at in blocks, so a byte that is escaped is tried at each place of texts of all
/// lengths about a block's.
TEST(JsonString, EscapesWhereverTheByteStands) {
  for (std::size_t length = 1; length <= 40; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      std::string text(length, 'x');
      text[at] = '\n';
      TextBuffer out;
      append_json(out, text);
      const std::string expected =
          '"' + std::string(at, 'x') + "\\n" + std::string(length - at - 1, 'x') + '"';
      ASSERT_EQ(out.view(), expected);
    }
  }
}

}  // namespace
}  // namespace zem::fmt
