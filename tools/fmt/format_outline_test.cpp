// The tolerant reader against the engine: both must agree on which files are in order, and speak of
// the same faults up to the first syntax error.
#include "tools/fmt/format_outline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "adapters/logfile/common/LogDriver.h"
#include "tests/support/temp_dir.h"
#include "tests/support/text_mutation.h"
#include "tools/fmt/format_file.h"

namespace zem::test {
namespace {

using fmt::Code;
using fmt::Finding;

// The first syntax error is the last that counts.

std::size_t engine_errors(const TempDir& dir, const std::string& text) {
  LogDriver set;
  const fmt::FormatReading reading = fmt::read_formats(dir.write("x.fmt", text), set);
  const auto is_error = [](const fmt::EngineReport& report) { return report.is_error; };
  return static_cast<std::size_t>(std::ranges::count_if(reading.reports, is_error));
}

std::size_t outline_errors(const std::string& text) {
  const fmt::FormatOutline outline = fmt::read_outline(fmt::SourceText("x.fmt", text));
  std::size_t count = 0;
  for (const Finding& finding : outline.findings) {
    if (finding.severity() == fmt::Severity::kError) ++count;
    if (finding.code == Code::kSyntax) break;
  }
  return count;
}

const std::string kCutVariable("c $\0x\n", 6);
const std::vector<std::string> kFormatWords = {
    "FORMAT", "\nFORMAT a\n", " FOLLOWS ", "END",       "\nEND\n", "PRINTF(", "DEFAULT", "\"",
    "\\\"",   "%s",           "%s*",       "$1",        "$9",      "$",       "(",       ")",
    ",",      "\n",           " ",         "//",        "// x\n",  "/* ",     "*/",      "a",
    "\r",     "\t",           "x\nb $2\n", kCutVariable};

TEST(FormatOutline, AgreesWithTheEngineOnWhatIsAFault) {
  const std::string source = read_file(ZEM_SOURCE_DIR "/tests/golden/fmt/check/good.small.fmt");
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 500;
  TextMutator mutate(kSeed, kFormatWords);
  const TempDir dir;
  const std::string cut = "FORMAT a\n%s\n" + kCutVariable + "END\n";
  EXPECT_EQ(engine_errors(dir, cut), 1U) << "a NUL makes it the variable of number 0";
  EXPECT_EQ(outline_errors(cut), 1U);
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = mutate(source);
    ASSERT_EQ(outline_errors(text), engine_errors(dir, text))
        << "seed " << kSeed << ", round " << round << ":\n"
        << text;
  }
}

TEST(FormatOutline, HasTheEntriesBehindAFault) {
  const fmt::SourceText source(
      "x.fmt",
      "FORMAT a\n%s\nwrong\nb $1\nEND\nFORMAT b FOLLOWS a\nx%s*\n-c PRINTF(\"%s\", b)\nEND\n");
  const fmt::FormatOutline outline = fmt::read_outline(source);
  ASSERT_EQ(outline.entries.size(), 2);
  EXPECT_FALSE(outline.entries[0].is_whole);
  EXPECT_EQ(outline.entries[0].slots.at(0).position(), 1);
  const fmt::EntryOutline& second = outline.entries[1];
  EXPECT_TRUE(second.is_whole);
  EXPECT_EQ(second.parent->text, "a");
  EXPECT_EQ(second.variable(1)->word.text, "%s*");
  EXPECT_EQ(second.slot_line("c")->arguments.at(0).text, "b");
  EXPECT_EQ(source.text().substr(second.name.where.position, 11), "b FOLLOWS a");
}

}  // namespace
}  // namespace zem::test
