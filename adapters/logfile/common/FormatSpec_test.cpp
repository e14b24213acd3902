#include "adapters/logfile/common/FormatSpec.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "tests/support/plain_matcher.h"
#include "tests/support/random_formats.h"
#include "tests/support/report_capture.h"
#include "util/text.h"

namespace {

using zem::format::make_counted;
using zem::format::Ref;
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

void PrintTo(const BindCase& c, std::ostream* out) { *out << c.name; }

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

INSTANTIATE_TEST_SUITE_P(Messages, FormatBind, testing::ValuesIn(kBindCases),
                         [](const auto& c) { return std::string(c.param.name); });

// The pieces of a format string, each with the constant that cuts its words.

struct SplitCase {
  const char* name;
  const char* format;
  const char* pieces;
};

void PrintTo(const SplitCase& c, std::ostream* out) { *out << c.name; }

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

INSTANTIATE_TEST_SUITE_P(Formats, FormatSplit, testing::ValuesIn(kSplitCases),
                         [](const auto& c) { return std::string(c.param.name); });

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

TEST(FormatSpec, GivesItsFormatBack) {
  FormatSpec spec("F");
  for (const char* piece : {"%t", " ", "%s", "[", "%s", "]:", " ", "%s*"}) spec.addFormat(piece);
  spec.addLookahead();
  EXPECT_TRUE(spec.getFmtStr() == "%t %s[%s]: %s*");
  EXPECT_EQ(spec.numvars(), 4);
  spec.ldelete();
  EXPECT_TRUE(spec.getFmtStr() == "");
  EXPECT_EQ(spec.numvars(), 0);
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
  const ReportCapture reports;
  FormatSpec spec("F");
  spec.setFmtStr("%s %s*");
  for (const auto& [message, first, second] :
       std::vector<std::array<const char*, 3>>{{"a b", "a", "b"}, {"c ", "c", ""}}) {
    SysLogMsg msg(message);
    EXPECT_NE(spec.bind(msg), 0);
    EXPECT_EQ(value_of(spec, 1), first);
    EXPECT_EQ(value_of(spec, 2), second);
  }
  EXPECT_EQ(value_of(spec, 0), "???");
  EXPECT_EQ(value_of(spec, 3), "???");
}

// Slots.

MsgMapEntry* slot(FormatSpec& spec, const char* name, long kind,
                  const std::vector<const char*>& rules) {
  MsgMapEntry* const entry = MsgMapEntry::create(&spec, name, kind);
  for (const char* rule : rules) entry->addRule(rule, &spec);
  spec.addSlot(entry);
  return entry;
}

/// The two formats of the mail daemon, the second following the first.
class MailFormats : public testing::Test {
 protected:
  MailFormats() {
    base_->setFmtStr("%t %s %s[%s]: %s*");
    slot(*base_, "date", kMapVariable, {"$1"});
    slot(*base_, "hostname", kMapVariable, {"$2"});
    slot(*base_, "sub_source", kMapVariable, {"$3"});
    slot(*base_, "pid", kMapVariable, {"$4"});
    slot(*base_, "msg", kMapVariable, {"$5"});
    slot(*base_, "severity", kMapDefault, {"DEFAULT"});
    refused_->setFmtStr("%t %s %s[%s]: refused connect from %s");
    refused_->addFollows(base_.get());
    slot(*refused_, "origin", kMapVariable, {"$5"});
    slot(*refused_, "msg", kMapPrint, {"\"refused connect from %s\"", "origin"});
    slot(*refused_, "severity", kMapConstant, {"WARNING"});
  }

  template <class Write>
  static std::string written(Write write) {
    char* text = nullptr;
    std::size_t bytes = 0;
    std::FILE* const out = open_memstream(&text, &bytes);
    write(out);
    std::fclose(out);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return {text, bytes};
  }

  ReportCapture reports_;
  Ref<FormatSpec> base_{make_counted<FormatSpec>("Mail_Base")};
  Ref<FormatSpec> refused_{make_counted<FormatSpec>("Mail_Refused")};
};

TEST_F(MailFormats, WriteAClassWithoutSlots) {
  const Ref<FormatSpec> bare(make_counted<FormatSpec>("Bare"));
  const auto cds = [&] { return written([&](std::FILE* out) { bare->genCds(out, 0); }); };
  const std::string head = "CLASS Bare\n  SELECT\n    1: ATTR(=,\"_event_id\"), VALUE(=,\"0\");\n";
  EXPECT_EQ(cds(), head + "END\n");
  slot(*bare, "-quiet", kMapConstant, {"x"});
  EXPECT_EQ(cds(), head + "  MAP\nEND\n") << "MAP stands before the first slot, mapped or not";
}

TEST_F(MailFormats, WriteTheirFormatText) {
  LogDriver set;
  set.addFormatSpec(refused_.get());
  const auto text = [&] {
    return written([&](std::FILE* out) { refused_->genFmt(out, &set, 0); });
  };
  const std::string format = "\n%t %s %s[%s]: refused connect from %s\n";
  const std::string own =
      "msg PRINTF(\"refused connect from %s\", origin)\nseverity \"WARNING\"\norigin $5\nEND\n\n";
  EXPECT_EQ(text(),
            "FORMAT Mail_Refused" + format + "date $1\nhostname $2\nsub_source $3\npid $4\n" + own)
      << "the parent is not in the set, so its slots are spelled out";
  set.addFormatSpec(base_.get());
  EXPECT_EQ(text(), "FORMAT Mail_Refused FOLLOWS Mail_Base" + format + own);
}

TEST_F(MailFormats, DescribeTheEvent) {
  SysLogMsg msg("Nov 15 09:47:37 hostA sendmail[123]: refused connect from 10.0.0.9\n");
  ASSERT_NE(refused_->bind(msg), 0);
  EXPECT_EQ(refused_->aevent().view(),
            "EVENT Mail_Refused `date=Nov 15 09:47:37' `hostname=hostA' `sub_source=sendmail' "
            "`pid=123' `msg=refused connect from 10.0.0.9' `severity=WARNING' "
            "`origin=10.0.0.9' END");
}

TEST_F(MailFormats, DumpThemselvesAndTheirMatch) {
  FormatSpec spec("Short");
  spec.setFmtStr("%s[%s]");
  slot(spec, "a", kMapVariable, {"$1"});
  SysLogMsg msg("x[y]");
  ASSERT_NE(spec.bind(msg), 0);
  testing::internal::CaptureStdout();
  spec.dbgdump();
  spec.dbgmatch();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Short numVars 2\n%s[%s]\n\ta 1 $1\nmatched Short\n\t$1 is `x'\n\t$2 is `y'\n");
}

TEST_F(MailFormats, DropInheritedSlotsWithoutAVariable) {
  const Ref<FormatSpec> child(make_counted<FormatSpec>("Child"));
  child->setFmtStr("%s %s");
  slot(*child, "hostname", kMapConstant, {"here"});
  child->addFollows(base_.get());
  EXPECT_EQ(reports_.text(),
            "W in Child dropping inherited map `sub_source $3'\n"
            "W in Child dropping inherited map `pid $4'\n"
            "W in Child dropping inherited map `msg $5'\n");
  EXPECT_EQ(status, 0);
  std::string names;
  for (const MsgMapEntry* entry : child->slots()) names.append(entry->name()).append(" ");
  EXPECT_EQ(names, "hostname date severity ");
}

TEST_F(MailFormats, ShareInheritedSlots) {
  MsgMapEntry* const date = base_->getmap("date");
  EXPECT_EQ(refused_->getmap("date"), date);
  EXPECT_EQ(date->owner(), base_.get());
  EXPECT_EQ(date->refcnt(), 2);
  EXPECT_EQ(base_->getmap("msg")->refcnt(), 1) << "the child has replaced its own";
  EXPECT_EQ(base_->refcnt(), 2);
  refused_->addFollows(nullptr);
  EXPECT_EQ(date->refcnt(), 1);
  EXPECT_EQ(base_->refcnt(), 1);
  EXPECT_EQ(refused_->getmap("date"), nullptr);
  EXPECT_NE(refused_->getmap("msg"), nullptr);
}

TEST_F(MailFormats, ChildrenKeepTheirParent) {
  refused_->addFollows(base_.get());
  EXPECT_EQ(base_->refcnt(), 2) << "following the same parent again";
  base_ = {};
  EXPECT_EQ(refused_->parent()->refcnt(), 1);
  SysLogMsg msg("a b c hostA d[1]: refused connect from x");
  ASSERT_NE(refused_->bind(msg), 0);
  EXPECT_TRUE(refused_->getmap("hostname")->svalue(refused_.get()) == "hostA");
}

TEST_F(MailFormats, RankInheritedSlotsAmongTheirOwn) {
  const Ref<FormatSpec> child(make_counted<FormatSpec>("Child"));
  child->setFmtStr("%s %s");
  slot(*child, "date", kMapConstant, {"today"});
  child->addFollows(base_.get());
  const MsgMapEntry* const hostname = child->getmap("hostname");
  EXPECT_TRUE(hostname->cdsMap(child.get()) == "$V2");
  EXPECT_TRUE(hostname->cdsMap(base_.get()) == "$V3");
}

TEST_F(MailFormats, ReadTheirOwnVariablesThroughInheritedSlots) {
  const Ref<FormatSpec> child(make_counted<FormatSpec>("Child"));
  child->setFmtStr("<%s> %s");
  child->addFollows(base_.get());
  SysLogMsg msg("<one> two");
  ASSERT_NE(child->bind(msg), 0);
  EXPECT_TRUE(child->getmap("date")->svalue(child.get()) == "one");
}

TEST_F(MailFormats, WarnOfVariablesMappedNeverOrTwice) {
  EXPECT_EQ(refused_->verifySlot(), refused_.get());
  EXPECT_EQ(reports_.text(), "") << "every variable is mapped once";
  FormatSpec spec("Odd");
  spec.setFmtStr("%s %s %s");
  slot(spec, "a", kMapVariable, {"$2"});
  slot(spec, "-b", kMapVariable, {"$2"});
  slot(spec, "c", kMapVariable, {"$9"});
  slot(spec, "-d", kMapVariable, {"$3"});
  EXPECT_EQ(spec.verifySlot(), &spec);
  EXPECT_EQ(reports_.text(),
            "E0 $9 must be between 1 and 3\n"
            "W Odd does not map $1 in format string\n"
            "W in Odd $2 is used by more than one map\n");
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
