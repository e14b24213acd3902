#include "adapters/logfile/common/FormatSpec.h"

#include <string>
#include <utility>
#include <vector>

#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "tests/support/format_set.h"
#include "tests/support/plain_matcher.h"
#include "tests/support/random_formats.h"
#include "tests/support/report_capture.h"
#include "tests/support/table.h"
#include "util/text.h"

namespace {

using zem::test::FormatSet;
using zem::test::kMailFormats;
using zem::test::ReportCapture;

std::string join(const std::vector<std::string>& parts) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) text.append(i == 0 ? "" : "|").append(parts[i]);
  return text;
}

std::string value_of(const FormatSpec& spec, int k) {
  VarMapEntry entry(nullptr, "v");
  entry.addRule(zem::util::format_text("$%d", k).c_str(), &spec);
  return spec.bvalue(&entry).getString();
}

/// The captured values as "a|b", or "no match".
std::string dump_bind(const std::string& format, const std::string& message) {
  FormatSpec spec("F");
  spec.setFmtStr(format.c_str());
  SysLogMsg msg(message.c_str());
  if (spec.bind(msg) == 0) return "no match";
  std::vector<std::string> values;
  for (int k = 1; k <= spec.numvars(); ++k) values.push_back(value_of(spec, k));
  return join(values);
}

struct BindCase {
  const char* name;
  const char* format;
  const char* message;
  const char* captured;
};

const BindCase kBindCases[] = {
    {"WordTakesOneWord", "%s", "one two", "no match"},
    {"WordNeedsAWord", "%s", "", "no match"},
    {"WordStopsAtTheNextConstant", "%s[%s]:", "sendmail[123]:", "sendmail|123"},
    {"WordStopsAtTheFirstOccurrence", "%s-%s", "a-b-c", "a|b-c"},
    {"WordIsNotCutAcrossABlank", "%s x", "axb x", "axb"},
    {"WordBeforeAConstantMayNotBeEmpty", "%s[x", "[x", "no match"},
    {"WordGivesNothingBack", "%s%sx", "abx", "no match"},
    {"BlanksAroundTheMessageDoNotCount", "%s", " \tone \n", "one"},
    {"BlankMatchesAnyRun", "%s %s", "a \t \v b", "a|b"},
    {"BlankNeedsABlank", "a b", "ab", "no match"},
    {"BlankAtTheEndNeedsABlank", "a ", "a", "no match"},
    {"BlankAtTheStartNeverMatches", " a", " a", "no match"},
    {"ConstantIsAPrefixOfTheWord", "abcdef", "abcdef", ""},
    {"ConstantLeavesTheRest", "abc%s", "abcdef", "def"},
    {"ConstantDoesNotMatchABlank", "a%s", "a b", "no match"},
    {"ConstantMustBeComplete", "abc", "ab", "no match"},
    {"TabIsAConstantThatNeverMatches", "%s\t%s", "a\tb", "no match"},
    {"BlankMatchesATab", "%s %s", "a\tb", "a|b"},
    {"TimeJoinsItsWordsByOneBlank", "%t", "Nov  5 09:00:00", "Nov 5 09:00:00"},
    {"TimeNeedsThreeWords", "%t", "Nov 15", "no match"},
    {"TimeIsCutInItsLastWordOnly", "%t:x", "a:b c:d e:x", "a:b c:d e"},
    {"StarMayTakeNothing", "%s*", "", ""},
    {"StarTakesAll", "%s*", "a  b\tc ", "a b c"},
    {"StarLeavesNoWordForTheNextVariable", "%s* %s", "a b c", "no match"},
    {"StarStopsAtAConstantFarBehind", "%s* %s: x", "a b: x", "no match"},
    {"StarStopsBeforeAWordThatBeginsWithTheConstant", "%s* [%s", "a b [c", "a b|c"},
    {"StarIsCutInItsMiddle", "%s*]x", "a b]x", "a b"},
    {"StarTakesNothingBeforeTheConstant", "%s*[x", "[x", ""},
    {"StarGivesItsBlanksBack", "%s* (x", "a (x", "a"},
    {"PlusNeedsAWord", "%s+", "", "no match"},
    {"PlusTakesAll", "%s+", "one", "one"},
    {"PlusJoinsItsWordsByOneBlank", "%s+ [x", "a  b [x", "a b"},
    {"PlusIsCutInItsFirstWord", "%s+]x", "a]x", "a"},
    {"WidthTakesThatManyCharacters", "%3s%s", "abcde", "abc|de"},
    {"WidthNeedsThatManyCharacters", "%3s", "ab", "no match"},
    {"WidthIsNotCutByTheNextConstant", "%3sx", "axbx", "axb"},
    {"WidthZeroIsNone", "%0s[x", "ab[x", "ab"},
    {"StarWithWidthEndsInsideAWord", "%2s*%s", "abc", "ab|c"},
    {"StarWithWidthIsCutFirst", "%2s*:%s", "ab:c", "ab|c"},
    {"PlusWithWidthNeedsThatManyCharacters", "%2s+", "a", "no match"},
    {"TimeIgnoresItsWidth", "%2t", "aaa b c", "aaa b c"},
    {"OtherConversionsAreText", "%d %% %s", "%d %% a", "a"},
    {"TheEmptyFormatMatchesNoMessage", "", "", "no match"},
    {"BytesAbove127AreText", "\xe9%s", "\xe9\xa0x", "\xa0x"},
};

class FormatBind : public testing::TestWithParam<BindCase> {};

TEST_P(FormatBind, Captures) {
  const ReportCapture reports;
  EXPECT_EQ(dump_bind(GetParam().format, GetParam().message), GetParam().captured);
}

TEST_P(FormatBind, AgreesWithThePlainMatcher) {
  const ReportCapture reports;
  const auto plain = zem::test::plain_match(GetParam().format, GetParam().message);
  EXPECT_EQ(plain ? join(*plain) : "no match", GetParam().captured);
}

INSTANTIATE_TEST_SUITE_P(Messages, FormatBind, testing::ValuesIn(kBindCases), zem::test::kRowName);

// The pieces of a format string, each with the constant that cuts its words.

struct SplitCase {
  const char* name;
  const char* format;
  const char* pieces;
};

const SplitCase kSplitCases[] = {
    {"WordAmidText", "abc%sdef", "abc|%s{def}|def"},
    {"Blanks", "a   b", "a| |b"},
    {"BlanksThatStartWithATab", "a\t  b", "a|\t|b"},
    {"BlanksAtBothEnds", " a ", " |a| "},
    {"Modifiers", "%s*%s+%t", "%s*|%s+|%t"},
    {"ModifierOfText", "*+%s**", "*+|%s*{*}|*"},
    {"DigitsBehindAVariable", "%s1s", "%s{1s}|1s"},
    {"Widths", "%12s%3s*%4s+", "%12s|%3s*|%4s+"},
    {"PercentSigns", "%% %d%", "%%| |%d|%"},
    {"PercentAfterWidth", "%12%s", "%12%s"},
    {"WidthWithoutLetter", "%12x%1", "%12x|%1"},
    {"Nothing", "", ""},
    {"WordLooksAtTheNextPieceOnly", "%s %s[%s]", "%s| |%s{[}|[|%s{]}|]"},
    {"TimeLooksAtTheNextPiece", "%t:%t x", "%t{:}|:|%t| |x"},
    {"WidthLooksAtNothing", "%3s:", "%3s|:"},
    {"StarLooksBehindBlanksAndVariables", "%s* %s: x", "%s*{:}| |%s{:}|:| |x"},
    {"StarWithWidthLooksToo", "%3s* %s+ x", "%3s*{x}| |%s+{x}| |x"},
    {"StarBehindTheLastConstant", "x %s*", "x| |%s*"},
};

std::string dump_pieces(const FormatSpec& spec) {
  std::vector<std::string> pieces;
  auto lookahead = spec.lookaheads().begin();
  for (const FormatComponent* component : spec.components()) {
    const std::string cut((*lookahead)->text());
    pieces.push_back(component->fmtRep() + (cut.empty() ? "" : "{" + cut + "}"));
    ++lookahead;
  }
  return join(pieces);
}

class FormatSplit : public testing::TestWithParam<SplitCase> {};

TEST_P(FormatSplit, MakesPiecesAndLookaheads) {
  const ReportCapture reports;
  FormatSpec spec("F");
  spec.setFmtStr("%s replaced");
  spec.setFmtStr(GetParam().format);
  EXPECT_EQ(dump_pieces(spec), GetParam().pieces);
  EXPECT_EQ(reports.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatSplit, testing::ValuesIn(kSplitCases), zem::test::kRowName);

TEST(FormatSpec, KeepsTheTailOfAnOverlongPiece) {
  const std::string head(512, 'h');
  FormatSpec spec("F");
  spec.setFmtStr((head.substr(1) + " " + head + "tail" + " " + head + head + "x").c_str());
  EXPECT_EQ(dump_pieces(spec), head.substr(1) + "| |tail| |x");
}

TEST(FormatSpec, ManyVariablesTakeLinearTime) {
  const ReportCapture reports;
  FormatSpec spec("F");
  for (int k = 0; k < 100'000; ++k) spec.addFormat("%s*");
  spec.addFormat("x");
  spec.addLookahead();
  for (const auto& cut : {spec.lookaheads().front(), spec.lookaheads()[99'999]}) {
    EXPECT_EQ(cut->text(), "x");
  }
}

TEST(FormatSpec, KeepsSixtyFourVariables) {
  const ReportCapture reports;
  FormatSpec spec("F");
  for (int k = 1; k <= 64; ++k) spec.addFormat("%1s");
  EXPECT_EQ(reports.text(), "");
  spec.addFormat("%1s");
  EXPECT_EQ(reports.text(), "E0 too many % variables in format\n");
  spec.addFormat("%1s");
  spec.addLookahead();
  EXPECT_EQ(status, 1);
  EXPECT_EQ(spec.numvars(), 66);
  SysLogMsg msg((std::string(63, 'a') + "bcd").c_str());
  EXPECT_NE(spec.bind(msg), 0);
  EXPECT_EQ(value_of(spec, 64), "b");
  EXPECT_EQ(value_of(spec, 65), "???") << "surplus variables capture nothing";
  EXPECT_EQ(value_of(spec, 66), "???");
}

TEST(FormatSpec, ForgetsTheValuesOfTheMatchBefore) {
  FormatSpec spec("F");
  spec.setFmtStr("%s %s*");
  for (const auto& [message, second] : {std::pair{"a b", "b"}, {"a ", ""}}) {
    SysLogMsg msg(message);
    EXPECT_NE(spec.bind(msg), 0);
    EXPECT_EQ(value_of(spec, 1) + value_of(spec, 2), std::string("a") + second);
  }
  EXPECT_EQ(value_of(spec, 0) + value_of(spec, 3), "??????");
}

// Slots.

/// The two formats of the mail daemon, the second following the first, and more that follow.
class MailFormats : public testing::Test {
 protected:
  explicit MailFormats(const std::string& more = "") : set_(std::string(kMailFormats) + more) {}

  ReportCapture reports_;
  FormatSet set_;
  FormatSpec* base_ = set_.getFormatSpec("Mail_Base");
  FormatSpec* refused_ = set_.getFormatSpec("Mail_Refused");
};

TEST_F(MailFormats, DescribeTheEvent) {
  SysLogMsg msg("Nov 15 09:47:37 hostA sendmail[123]: refused connect from 10.0.0.9\n");
  ASSERT_NE(refused_->bind(msg), 0);
  EXPECT_EQ(refused_->aevent().view(),
            "EVENT Mail_Refused `date=Nov 15 09:47:37' `hostname=hostA' `sub_source=sendmail' "
            "`pid=123' `msg=refused connect from 10.0.0.9' `severity=WARNING' "
            "`origin=10.0.0.9' END");
}

TEST(FormatSpec, DumpsItselfAndItsMatch) {
  const FormatSet set("FORMAT Short\n%s[%s]\na $1\nEND\n");
  FormatSpec* const spec = set.getFormatSpec("Short");
  EXPECT_TRUE(spec->getFmtStr() == "%s[%s]");
  SysLogMsg msg("x[y]");
  ASSERT_NE(spec->bind(msg), 0);
  testing::internal::CaptureStdout();
  spec->dbgdump();
  spec->dbgmatch();
  spec->MapSpec::dbgdump();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Short numVars 2\n%s[%s]\n\ta 1 $1\nmatched Short\n\t$1 is `x'\n\t$2 is `y'\n"
            "Short\n\ta 1 $1\n");
}

TEST_F(MailFormats, ShareInheritedSlots) {
  MsgMapEntry* const date = base_->getmap("date");
  EXPECT_EQ(refused_->getmap("date"), date);
  EXPECT_EQ(date->owner(), base_);
  EXPECT_EQ(date->refcnt(), 2);
  EXPECT_EQ(base_->getmap("msg")->refcnt(), 1) << "the child has replaced its own";
  refused_->addFollows(base_);
  EXPECT_EQ(base_->refcnt(), 2) << "the set and the child, which follows it again";
  set_.removeFormatSpec("Mail_Base");
  EXPECT_EQ(refused_->parent()->refcnt(), 1) << "the child keeps it";
  SysLogMsg msg("a b c hostA d[1]: refused connect from x");
  ASSERT_NE(refused_->bind(msg), 0);
  EXPECT_TRUE(refused_->getmap("hostname")->svalue(refused_) == "hostA");
  refused_->addFollows(nullptr);
  EXPECT_EQ(refused_->getmap("date"), nullptr);
  EXPECT_NE(refused_->getmap("msg"), nullptr);
}

class ShorterFormat : public MailFormats {
 protected:
  ShorterFormat() : MailFormats("FORMAT Child FOLLOWS Mail_Base\n%s %s\ndate today\nEND\n") {}
  FormatSpec* child_ = set_.getFormatSpec("Child");
};

TEST_F(ShorterFormat, DropsInheritedSlotsWithoutAVariable) {
  EXPECT_EQ(reports_.text(),
            "W in Child dropping inherited map `sub_source $3'\n"
            "W in Child dropping inherited map `pid $4'\n"
            "W in Child dropping inherited map `msg $5'\n");
  EXPECT_EQ(status, 0);
  std::string names;
  for (const MsgMapEntry* entry : child_->slots()) names.append(entry->name()).append(" ");
  EXPECT_EQ(names, "date hostname severity ");
}

TEST_F(ShorterFormat, RanksInheritedSlotsAmongItsOwn) {
  const MsgMapEntry* const hostname = child_->getmap("hostname");
  EXPECT_TRUE(hostname->cdsMap(child_) == "$V2");
  EXPECT_TRUE(hostname->cdsMap(base_) == "$V3");
}

// Random formats against the plain matcher.

TEST(FormatBindRandom, AgreesWithThePlainMatcher) {
  const ReportCapture reports;
  constexpr unsigned kSeeds = 40000;
  unsigned matched = 0;
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    zem::test::RandomFormats random(seed);
    const std::string format = random.format();
    const std::string message = random.message(format);
    const std::string up_to_nul = message.substr(0, message.find('\0'));
    const auto plain = zem::test::plain_match(format, up_to_nul);
    const std::string expected = plain ? join(*plain) : "no match";
    if (plain) ++matched;
    ASSERT_EQ(dump_bind(format, message), expected)
        << "seed " << seed << ": format \"" << format << "\", message \"" << message << '"';
  }
  EXPECT_GT(matched, kSeeds / 10) << "too few of the cases match to prove anything";
}

}  // namespace
