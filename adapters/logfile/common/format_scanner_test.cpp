#include "adapters/logfile/common/format_scanner.h"

#include <string>

#include "tests/support/table.h"

namespace zem::format {
namespace {

std::string kind_name(int kind) {
  switch (kind) {
    case kWord:
      return "W:";
    case kSpec:
      return "S:";
    case kBlank:
      return "B:";
    case kQuoted:
      return "Q:";
    case kFormat:
      return "FORMAT";
    case kEnd:
      return "END";
    case kFollows:
      return "FOLLOWS";
    case kPrintf:
      return "PRINTF";
    case kDefault:
      return "DEFAULT";
    default:
      return "";
  }
}

std::string dump(const Token& token) {
  if (token.kind == kNewline) return "NL";
  const bool carries_text = token.kind < kFormat;
  return kind_name(token.kind) + (carries_text ? std::string(token.text) : "");
}

/// All tokens of `text`, one blank between them. FORMAT and the newline behind END set `offset` as
/// the grammar does, so that a whole entry can be told.
std::string dump_tokens(std::string_view text, int* lines = nullptr) {
  int offset = 0;
  int linenum = 0;
  FormatScanner scanner(offset, linenum);
  scanner.feed(text);
  std::string dumped;
  bool entry_ends = false;
  for (Token token = scanner.next(); token.kind != kEndOfFile; token = scanner.next()) {
    if (!dumped.empty()) dumped += ' ';
    dumped += dump(token);
    if (token.kind == kFormat) offset = 1;
    if (token.kind == kNewline && entry_ends) offset = 0;
    entry_ends = token.kind == kEnd;
  }
  if (lines != nullptr) *lines = linenum;
  return dumped;
}

struct ScanCase {
  const char* name;
  std::string text;
  std::string tokens;
};

class FormatScan : public testing::TestWithParam<ScanCase> {};

TEST_P(FormatScan, Tokens) { EXPECT_EQ(dump_tokens(GetParam().text), GetParam().tokens); }

const ScanCase kScanCases[] = {
    {"BetweenEntriesNewlinesAreNothing", " \t\n\v\f\n", ""},
    {"BlockCommentNeedsABlankBehindItsOpening", "/* a\nb*/ x /*note*/", "W:x W:/*note*/"},
    {"BlockCommentOpensBeforeASeparator", "/*\"x*/ y", "W:y"},
    {"UnendedBlockCommentRunsToTheEnd", "x /* y\nz", "W:x"},
    {"CommentOpeningInsideAWord", "a/* b */", "W:a/* W:b W:*/"},
    {"LineCommentTakesItsNewline", "// x\nFORMAT a// b\n", "FORMAT W:a// W:b NL"},
    {"LineCommentWithoutNewlineIsAWord", "// x", "W:// W:x"},
    {"FormatIsAKeywordBetweenEntriesOnly", "FORMAT FORMAT FOLLOWS x",
     "FORMAT W:FORMAT FOLLOWS W:x"},
    {"CarriageReturnIsAWordByte", "FORMAT a\r\n", "FORMAT W:a\r NL"},
    {"HighAndPunctuationBytesAreWordBytes", "$-=;/*+#\xa0\xff", "W:$-=;/*+#\xa0\xff"},
    {"NulIsAWordByte", std::string("a\0b c", 5), std::string("W:a\0b W:c", 9)},
    {"SeparatorsStandForThemselves", "\"%(),\\", "\" % ( ) , \\"},
    {"FormatLineTakesAllLiterally", "FORMAT a\n(\"x\\,y) END $1\n",
     "FORMAT W:a NL W:( W:\" W:x W:\\ W:, W:y W:) B:  W:END B:  W:$1 NL"},
    {"FormatLineSpecifiers", "FORMAT a\n%s%t%s+x%s*%sx%d%%%\n",
     "FORMAT W:a NL S:%s S:%t S:%s+ W:x S:%s* S:%s W:x W:% W:d W:% W:% W:% NL"},
    {"SlotKeywords", "FORMAT a\nx\nFORMAT DEFAULT\nFOLLOWS PRINTF\nDEFAULTS ENDX\nEND\nEND",
     "FORMAT W:a NL W:x NL W:FORMAT DEFAULT NL W:FOLLOWS PRINTF NL W:DEFAULTS W:ENDX NL END NL "
     "W:END"},
    {"SlotQuotedStrings", "FORMAT a\nx\nm\"a\\\"b\n\\\\\"n \"\" \"open",
     "FORMAT W:a NL W:x NL W:m Q:\"a\\\"b\n\\\\\" W:n Q:\"\" \" W:open"},
};

INSTANTIATE_TEST_SUITE_P(Table, FormatScan, testing::ValuesIn(kScanCases), test::kRowName);

TEST(FormatScanner, CountsNewlinesButNotThoseInQuotedStrings) {
  int lines = 0;
  dump_tokens("/* \n\n */\n// x\nFORMAT a\nx\nm \"\n\n\"\nEND\n", &lines);
  EXPECT_EQ(lines, 8);
}

TEST(FormatScanner, ReadsFedTextBehindWhatIsUnread) {
  int offset = 0;
  int linenum = 0;
  FormatScanner scanner(offset, linenum);
  scanner.feed("a b");
  scanner.next();
  scanner.feed("c d");
  EXPECT_EQ(scanner.next().text, "bc");
  EXPECT_EQ(scanner.next().text, "d");
}

TEST(FormatScanner, ManyOpenLineCommentsTakeLinearTime) {
  int offset = 2;
  int linenum = 0;
  FormatScanner scanner(offset, linenum);
  std::string text;
  for (int i = 0; i < 200'000; ++i) text.append("// ");
  scanner.feed(text);
  int words = 0;
  for (Token token = scanner.next(); token.kind != kEndOfFile; token = scanner.next()) {
    words += token.kind == kWord ? 1 : 0;
  }
  EXPECT_EQ(words, 200'000);
}

}  // namespace
}  // namespace zem::format
