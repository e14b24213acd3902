#include "adapters/libzemad/class_scanner.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/support/plain_class_scanner.h"
#include "tests/support/table.h"
#include "tests/support/text_source.h"
#include "util/text.h"

namespace zem::kernel {
namespace {

using test::TextSource;
using util::format_text;

/// A keyword table with one row, number 3: "Key".
int keyword_index(const char* name) { return std::strcmp(name, "Key") == 0 ? 3 : -1; }

bool has_number(int token) { return token >= TOKEN_NUMBER && token <= TOKEN_FETCH_REF; }

/// Every token with its text, or with its number: "<abc> 258=31 61".
std::string tokens_of(std::string_view text, bool reserved_words_on = true) {
  const TextSource source(text);
  ClassScanner scan(TextSource::next, keyword_index);
  scan.switch_reserved_words(reserved_words_on);
  std::string result;
  for (int token = scan.yylex(); token != ClassScanner::kEndOfInput; token = scan.yylex()) {
    if (!result.empty()) result += ' ';
    if (token == TOKEN_STRING) {
      result += format_text("<%s>", scan.text());
    } else if (has_number(token)) {
      result += format_text("%d=%d", token, scan.number());
    } else {
      result += std::to_string(token);
    }
  }
  return result;
}

struct TokenCase {
  const char* name;
  std::string text;
  std::string tokens;
};

class Tokens : public testing::TestWithParam<TokenCase> {};

TEST_P(Tokens, AreRead) { EXPECT_EQ(tokens_of(GetParam().text), GetParam().tokens); }

const std::string kLong(1023, 'x');

const TokenCase kTokenCases[] = {
    {"Nothing", "", ""},
    {"EveryReservedWord",
     "OID CLASS MAP_DEFAULT SELECT FETCH MAP ATTR KEY VALUE PRINTF SUBSTR IPNAME IPADDR PREFIX "
     "SUFFIX EXISTS CONTAINS END\n",
     "264 265 266 267 268 269 270 271 272 273 274 275 276 279 280 281 282 283"},
    {"ReservedWordsAreExact", "class CLASSE CLAS \"CLASS\"\n", "<class> <CLASSE> <CLAS> <CLASS>"},
    {"Punctuation", "!(),:;<=>[]{}", "33 40 41 44 58 59 60 61 62 91 93 123 125"},
    {"EveryOtherByteIsAWordByte", "$%&*+-./?@\\^_~|`\x80\xFF\n", "<$%&*+-./?@\\^_~|`\x80\xFF>"},
    {"IgnoredBytesDoNotEndAWord",
     std::string("a\0b\x01\r\x7F"
                 "c\v d\n",
                 11),
     "<abc> <d>"},
    {"LastLineWithoutNewline", "abc def", "<abc>"},
    // Comments
    {"CommentDoesNotEndAWord", "abc#x y\ndef\n", "<abcdef>"},
    // Strings
    {"DoubledDelimiterAlone", "\"\"\"\" ''''\n", "<\"> <'>"},
    {"DoubledDelimiter", "\"it\"\"s\" 'it''s'\n", "<it\"s> <it's>"},
    {"WordBeforeAStringJoinsIt", "ab\"c d\"ef\n", "<abc d> <ef>"},
    {"ClosingQuoteAsTheLastByte", "'ab'", "<ab>"},
    {"UnclosedStringIsDropped", "a 'b c\nd", "<a>"},
    {"NulEndsTheTextOfAString", std::string("'a\0b' c\n", 8), "<a> <c>"},
    // Numbers
    {"Decimal", "0 31 010 -7 -0\n", "258=0 258=31 258=10 258=-7 258=0"},
    {"Hexadecimal", "0x1F 0XfF\n", "258=31 258=255"},
    {"NotNumbers", "- -0x10 1e3 0x 0xg +5 1.5 5a\n",
     "<-> <-0x10> <1e3> <0x> <0xg> <+5> <1.5> <5a>"},
    {"NumbersAreClamped", "4294967295 0xFFFFFFFF 2147483647 -2147483649 99999999999999999999\n",
     "258=2147483647 258=2147483647 258=2147483647 258=-2147483648 258=2147483647"},
    // References and keywords
    {"References", "$N1 $K22 $V3 $F4\n", "260=1 261=22 262=3 263=4"},
    {"NegativeReference", "$V-3 $V+3\n", "262=-3 262=3"},
    {"NoReferences", "$N0 $N $N1x $Q5 $v1 $V0x1\n", "<$N0> <$N> <$N1x> <$Q5> <$v1> <$V0x1>"},
    {"Keywords", "$Key $key $ $Keys\n", "259=3 <$key> <$> <$Keys>"},
    // Limits
    {"LongestWord", kLong + "\n", "<" + kLong + ">"},
    {"LongerWordIsCut", kLong + "yz;", "<" + kLong + "> 59"},
    {"LongerStringIsCut", "'" + kLong + "yz' a\n", "<" + kLong + "> <a>"}};
INSTANTIATE_TEST_SUITE_P(ClassScanner, Tokens, testing::ValuesIn(kTokenCases), test::kRowName);

TEST(ClassScanner, WithoutReservedWordsEveryWordIsAString) {
  EXPECT_EQ(tokens_of("CLASS 5 $V1 $Key 'x' ;\n", false), "<CLASS> <5> <$V1> <$Key> <x> 59");
}

TEST(ClassScanner, CountsLinesButNotThoseInStrings) {
  const TextSource source("a # c\n'x\ny' b\n;");
  ClassScanner scan(TextSource::next, keyword_index);
  std::string lines;
  while (scan.yylex() != ClassScanner::kEndOfInput) lines += std::to_string(scan.line()) + " ";
  EXPECT_EQ(lines, "1 2 3 3 ");
  EXPECT_STREQ(scan.text(), "");
}

TEST(ClassScanner, SkipsToTheNextStatement) {
  const TextSource source("a ; END CLASS b MAP_DEFAULT\n");
  ClassScanner scan(TextSource::next, keyword_index);
  scan.skip_to_statement();
  EXPECT_EQ(scan.yylex(), TOKEN_CLASS);
  EXPECT_EQ(scan.yylex(), TOKEN_STRING);
  scan.skip_to_statement();
  EXPECT_EQ(scan.yylex(), TOKEN_MAP_DEFAULT);
  scan.skip_to_statement();
  EXPECT_EQ(scan.yylex(), ClassScanner::kEndOfInput);
}

TEST(ClassScanner, TracesLinesAndTokens) {
  test::LogCapture log;
  log.listen(log::kParser, {log::kNormal, log::kVerbose});
  tokens_of("a 'b';\n");
  EXPECT_EQ(log.raw(),
            "Line   1: a 'b';\n TOKEN:257 \"a\"\n TOKEN:257 \"b\"\n TOKEN:59 \";\"\n"
            "Line   2: \n TOKEN:-1 \"\"\n");
}

// The plain scanner
// ---------------------------------------------------------------------------------

/// A text of pieces that mean something to one scanner or the other, some of them cut short.
std::string random_text(std::mt19937_64& random) {
  static const std::string kPieces[] = {"CLASS",
                                        "END",
                                        "MAP_DEFAULT",
                                        "OID",
                                        "$V1",
                                        "$N0",
                                        "$Key",
                                        "$K+7",
                                        "$F-2",
                                        "$V+-1",
                                        "0x1F",
                                        "0x-1",
                                        "0X",
                                        "-7",
                                        "010",
                                        "99999999999999999999",
                                        "-",
                                        "-0x1",
                                        "abc",
                                        "x.y",
                                        "it''s",
                                        "\"\"",
                                        "\"",
                                        "'",
                                        "#",
                                        "# c\n",
                                        "\n",
                                        " ",
                                        "\t",
                                        ";",
                                        "=(",
                                        ",)",
                                        std::string("\0", 1),
                                        "\x01",
                                        "\x7F",
                                        "\x80\xFF",
                                        "\r",
                                        "\v",
                                        std::string(600, 'w')};
  std::string text;
  for (auto pieces = random() % 24; pieces > 0; --pieces) {
    text += kPieces[random() % std::size(kPieces)];
    if (random() % 4 == 0) text += ' ';
  }
  return text;
}

/// Everything that a scanner says of a text.
template <class Scanner>
std::string account_of(Scanner&& scan, bool reserved_words_on) {
  scan.switch_reserved_words(reserved_words_on);
  std::string account;
  int token = 0;
  while (token != ClassScanner::kEndOfInput) {
    token = scan.yylexreal();
    account += format_text("%d <%s> %d, %zu-%zu, line %d\n", token, scan.text(), scan.number(),
                           scan.position(), scan.consumed(), scan.line());
  }
  return account;
}

/// And what it traces.
template <class Scanner>
std::string traced_account_of(Scanner&& scan) {
  test::LogCapture log;
  log.listen(log::kParser, {log::kNormal});
  const std::string account = account_of(scan, true);
  return account + log.raw();
}

TEST(ClassScanner, SaysOfRandomTextsWhatThePlainScannerSays) {
  constexpr std::uint64_t kSeed = 20240;
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 20'000; ++i) {
    const std::string text = random_text(random);
    const bool on = i % 8 != 0;
    ASSERT_EQ(account_of(ClassScanner(text, keyword_index), on),
              account_of(test::PlainClassScanner(text, keyword_index), on))
        << "seed " << kSeed << ", text " << i << ": " << testing::PrintToString(text);
    if (i % 100 != 0) continue;
    ASSERT_EQ(traced_account_of(ClassScanner(text, keyword_index)),
              traced_account_of(test::PlainClassScanner(text, keyword_index)))
        << "seed " << kSeed << ", text " << i;
  }
}

}  // namespace
}  // namespace zem::kernel
