// Whether one FORMAT takes every line of another: what is shown must be true, and what is obvious
// must be shown.

#include <string>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/ref.h"
#include "tests/support/table.h"
#include "tests/support/text_mutation.h"
#include "tools/fmt/format_checks.h"

namespace zem::test {
namespace {

using SpecRef = format::Ref<FormatSpec>;

SpecRef spec_of(const std::string& format) {
  SpecRef spec(format::make_counted<FormatSpec>("x"));
  spec->setFmtStr(format.c_str());
  return spec;
}

struct CoverCase {
  const char* name;
  const char* winner;
  const char* loser;
  bool is_shown;
};

class TakesEveryLine : public testing::TestWithParam<CoverCase> {
 protected:
  LogDriver components_;  // makes the shared components
};

TEST_P(TakesEveryLine, IsShown) {
  const SpecRef winner = spec_of(GetParam().winner);
  const SpecRef loser = spec_of(GetParam().loser);
  EXPECT_EQ(fmt::takes_every_line_of(*winner, *loser), GetParam().is_shown);
}

INSTANTIATE_TEST_SUITE_P(Formats, TakesEveryLine,
                         testing::Values(CoverCase{"Same", "a %s b", "a %s b", true},
                                         CoverCase{"Star", "a %s*", "a b: %s", true},
                                         CoverCase{"StarBehindAWord", "a%s*", "a b", false},
                                         CoverCase{"Plus", "a %s+", "a b %s*", true},
                                         CoverCase{"PlusNeedsAWord", "a %s+", "a %s*", false},
                                         CoverCase{"AWord", "a %s b", "a c[%s]: b", true},
                                         CoverCase{"AWordIsNotTwo", "a %s b", "a %s* b", false},
                                         CoverCase{"OtherCut", "%s*: %s*", "%s*: %s", true},
                                         CoverCase{"CutFurtherOn", "%s* a %s*", "%s* a: %s", false},
                                         CoverCase{"MoreWords", "a %s", "a b c", false},
                                         CoverCase{"FewerWords", "a %s %s*", "a b", false}),
                         kRowName);

TEST_F(TakesEveryLine, OnlyWhenItDoes) {
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 30000;
  TextMutator random(kSeed, {""});
  int shown = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string formats[] = {random.text_of({"%s", "%s*", "%s+", " ", " ", "a", ":"}),
                                   random.text_of({"%s", "%s*", "%s+", " ", " ", "a", ":"})};
    const SpecRef winner = spec_of(formats[0]);
    const SpecRef loser = spec_of(formats[1]);
    if (!fmt::takes_every_line_of(*winner, *loser)) continue;
    ++shown;
    for (int i = 0; i < 20; ++i) {
      const std::string message = random.text_of({"a", "b", ":", " ", "a:", "  "});
      SysLogMsg first(message.c_str());
      SysLogMsg second(message.c_str());
      if (loser->bind(first) == 0) continue;
      ASSERT_NE(winner->bind(second), 0)
          << "seed " << kSeed << ": \"" << formats[0] << "\" does "
          << "not take \"" << message << "\" from \"" << formats[1] << "\"";
    }
  }
  EXPECT_GT(shown, kRounds / 100);
}

}  // namespace
}  // namespace zem::test
