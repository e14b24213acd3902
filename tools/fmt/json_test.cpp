#include "tools/fmt/json.h"

#include <string>

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
