#include "adapters/logfile/common/matcher/compiled_set.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "tests/support/plain_set.h"
#include "tests/support/random_formats.h"
#include "tests/support/report_capture.h"
#include "tests/support/table.h"

namespace zem::test {
namespace {

using format::make_counted;
using format::Ref;

Ref<FormatSpec> new_spec(std::string_view name, std::string_view format) {
  Ref<FormatSpec> spec(make_counted<FormatSpec>(std::string(name).c_str()));
  spec->setFmtStr(std::string(format).c_str());
  return spec;
}

/// A set that tries the formats from first to last; format i is named "i".
std::unique_ptr<LogDriver> new_set(const std::vector<std::string>& formats) {
  auto set = std::make_unique<LogDriver>();
  for (const std::string& format : formats) {
    set->addFormatSpec(new_spec(std::to_string(set->specs().size()), format).get());
  }
  return set;
}

struct MatchCase {
  const char* name;
  std::vector<std::string> formats;
  const char* message;
  const char* matched;  ///< place, name and values
};

const MatchCase kMatchCases[] = {
    {"FirstOfTheListWins", {"%s b", "a %s", "%s %s"}, "a b", "0 0|a"},
    {"LiteralThatIsWorseDoesNotHideAVariable", {"%s c", "a %s"}, "a c", "0 0|a"},
    {"LaterFormatWhereTheFirstGoesAstray", {"a b %s x", "a %s y"}, "a b y", "1 1|b"},
    {"ValuesOfAPathThatFailedAreForgotten", {"%s* x", "%s y %s", "%s+"}, "a b c", "2 2|a b c"},
    {"BlankAtTheEndWantsABlank", {"a ", "a"}, "a", "1 1"},
    {"BlanksOnly", {"a", "%s", " ", "%s*"}, " \n", "3 3|"},
    {"NeverMatchingFormatsKeepTheirPlace", {" a", "a\tb", "", "a b"}, "a b", "3 3"},
    {"ValuesOutliveABetterFormatThatFails", {"%s %s* x", "a %s"}, "a bcd", "1 1|bcd"},
    {"BetterFormatFoundLaterReplacesTheValues", {"%s %s+", "a %s"}, "a bcd", "0 0|a|bcd"},
    {"LiteralOfMoreThanABlock",
     {"aaaaaaaaaaaaaaaaaaab", "aaaaaaaaaaaaaaaaaaaa"},
     "aaaaaaaaaaaaaaaaaaaa",
     "1 1"},
};

class SetMatch : public testing::TestWithParam<MatchCase> {};

TEST_P(SetMatch, FindsTheFirstThatMatches) {
  const ReportCapture reports;
  const auto set = new_set(GetParam().formats);
  EXPECT_EQ(plain_bind(*set, GetParam().message), GetParam().matched);
  EXPECT_EQ(compiled_bind(*set, GetParam().message), GetParam().matched);
}

INSTANTIATE_TEST_SUITE_P(Messages, SetMatch, testing::ValuesIn(kMatchCases), kRowName);

/// Formats from pieces that no format string gives: a constant with blanks in it, or without text.
TEST(CompiledSet, TakesAnyPiece) {
  const ReportCapture reports;
  const std::vector<std::vector<const char*>> formats = {{"a b"},
                                                         {"a", " ", " ", "b"},
                                                         {"a", "", " ", "b"},
                                                         {"", "a", " ", "%s", "", ":"},
                                                         {"%s*", ""}};
  LogDriver set;
  for (const auto& pieces : formats) {
    const Ref<FormatSpec> spec(make_counted<FormatSpec>("f"));
    for (const char* piece : pieces) spec->addFormat(piece);
    spec->addLookahead();
    set.addFormatSpec(spec.get());
  }
  const Ref<FormatSpec> unfinished(make_counted<FormatSpec>("unfinished"));
  unfinished->addFormat("a");
  set.addFormatSpec(unfinished.get());
  EXPECT_EQ(compiled_bind(set, "a b"), "no match");
  for (const char* message : {"a b", "a  b", "ab", "", "\n", "a b:", "a b :", "a :", "a"}) {
    EXPECT_EQ(compiled_bind(set, message), plain_bind(set, message)) << message;
  }
}

TEST(CompiledSet, KeepsSixtyFourValues) {
  const ReportCapture reports;
  std::string format;
  for (int k = 0; k < 66; ++k) format += "%1s";
  const auto set = new_set({format, "%s"});
  const std::string message = std::string(63, 'a') + "bcd";
  EXPECT_EQ(compiled_bind(*set, message.c_str()), plain_bind(*set, message.c_str()));
}

TEST(CompiledSet, LongTextsOfEveryLengthMatch) {
  for (std::size_t length = 1; length < 600; length += 7) {
    const std::string text(length, 'x');
    const auto set = new_set({text + "y", "%s " + text, text + " %s", text});
    for (const std::string& message : {text, text + "y", text + " z", "z\t " + text, text + "z"}) {
      EXPECT_EQ(compiled_bind(*set, message.c_str()), plain_bind(*set, message.c_str()));
    }
  }
}

/// A prefix of a prefix of a prefix: neither compiling nor matching may go deep.
TEST(CompiledSet, ChainOfPrefixesIsAsLongAsItLikes) {
  std::vector<std::string> formats = {"x"};
  while (formats.size() < 300) formats.push_back(formats.back() + " x");
  const auto set = new_set(formats);
  EXPECT_EQ(compiled_bind(*set, formats[200].c_str()), "200 200");
  EXPECT_EQ(compiled_bind(*set, (formats.back() + " x").c_str()), "no match");
}

TEST(CompiledSet, FollowsEveryChangeOfTheSet) {
  const auto set = new_set({"a %s", "%s b"});
  EXPECT_EQ(compiled_bind(*set, "a b"), "0 0|b");
  set->removeFormatSpec("0");
  EXPECT_EQ(plain_bind(*set, "a b"), "0 1|a");
  int index = 0;
  EXPECT_EQ(set->bind("a b", index), set->getFormatSpec("1"));
  EXPECT_EQ(index, 1) << "counted from the first call's size";
  set->editorAdd(new_spec("2", "%s* b").get());
  EXPECT_EQ(set->bind("a b", index), set->getFormatSpec("2"));
  set->getFormatSpec("2")->setFmtStr("c");
  EXPECT_EQ(set->bind("a b", index), set->getFormatSpec("1")) << "a format has been rewritten";
}

TEST(CompiledSet, ValuesOutliveTheMessageButNotTheSet) {
  auto set = new_set({"%s x", "%s y"});
  const Ref<FormatSpec> spec(set->getFormatSpec("0"));
  int index = 0;
  std::string message = "first x";
  (void)set->bind(message.c_str(), index);
  message = "gone gone";
  EXPECT_EQ(spec->aevent().view(), "EVENT 0 END");
  testing::internal::CaptureStdout();
  spec->dbgmatch();
  set->bind("second y", index)->dbgmatch();
  spec->dbgmatch();
  set.reset();
  spec->dbgmatch();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "matched 0\n\t$1 is `first'\nmatched 1\n\t$1 is `second'\n"
            "matched 0\n\t$1 is `'\nmatched 0\n\t$1 is `'\n");
}

TEST(CompiledSet, FormatsMayBeInSeveralSetsAndSeveralTimesInOne) {
  const auto one = new_set({"%s x", "%s y"});
  LogDriver other;
  for (int i = 0; i < 2; ++i) {
    for (FormatSpec* spec : one->specs()) other.addFormatSpec(spec);
  }
  for (const char* message : {"a y", "b x", "c y"}) {
    EXPECT_EQ(compiled_bind(*one, message), plain_bind(*one, message));
    EXPECT_EQ(compiled_bind(other, message), plain_bind(other, message));
  }
}

#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kPairs = 20'000;
#else
constexpr std::size_t kPairs = 100'000;
#endif

std::size_t pairs_wanted() {
  const char* const text = std::getenv("ZEM_MATCH_PAIRS");
  return text != nullptr ? std::strtoul(text, nullptr, 10) : kPairs;
}

std::string joined(const std::vector<std::string>& formats) {
  std::string text;
  for (const std::string& format : formats) text.append("\n  \"").append(format).append("\"");
  return text;
}

/// ZEM_MATCH_PAIRS is the number of pairs of a set and a message, kPairs when it is not set.
TEST(CompiledSetRandom, AgreesWithThePlainSet) {
  const ReportCapture reports;
  constexpr std::size_t kMessagesPerSet = 50;
  const std::size_t seeds = pairs_wanted() / kMessagesPerSet;
  std::size_t matched = 0;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    RandomFormats random(seed);
    const auto formats = random.formats(1 + random.pick(random.pick(8) == 0 ? 40 : 6));
    const auto set = new_set(formats);
    for (std::size_t i = 0; i < kMessagesPerSet; ++i) {
      const std::string message = random.message(formats[random.pick(formats.size())]);
      const std::string expected = plain_bind(*set, message.c_str());
      if (expected != "no match") ++matched;
      ASSERT_EQ(compiled_bind(*set, message), expected)
          << "seed " << seed << ": message \"" << message << "\", formats" << joined(formats);
    }
  }
  EXPECT_GT(matched, seeds * kMessagesPerSet / 10) << "too few match to prove anything";
}

}  // namespace
}  // namespace zem::test
