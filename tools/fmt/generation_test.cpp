// The two generators, by the real binary.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tests/support/temp_dir.h"
#include "tests/support/text_mutation.h"
#include "tests/support/tool_run.h"
#include "tools/fmt/format_file.h"

namespace zem::test {
namespace {

using testing::HasSubstr;

const std::string kGolden = ZEM_SOURCE_DIR "/tests/golden/format/";
const std::string kShipped = ZEM_SOURCE_DIR "/etc/zemad_logfile.fmt";

ToolRun run(const std::string& command, const std::string& path) {
  ToolRun result = run_tool(ZEM_FMT_TOOL, {.arguments = {command, path}});
  EXPECT_EQ(result.end, "exit 0") << result.err;
  return result;
}

class Generators : public testing::TestWithParam<std::string> {
 protected:
  TempDir dir_;
};

TEST_P(Generators, NormalizedTextSaysTheSame) {
  const std::string normal = run("normalize", GetParam()).out;
  const std::string path = dir_.write("normal.fmt", normal);
  EXPECT_EQ(run("normalize", path).out, normal);
  EXPECT_EQ(run("cds", path).out, run("cds", GetParam()).out);
}

INSTANTIATE_TEST_SUITE_P(Files, Generators,
                         testing::Values(kShipped, kGolden + "good.mail.fmt",
                                         kGolden + "good.inheritance.fmt",
                                         kGolden + "good.lexical.fmt"));

std::string random_piece(TextMutator& random, std::initializer_list<const char*> pieces) {
  return pieces.begin()[random.below(pieces.size())];
}

/// Four FORMATs that follow one another, with slots of all kinds; most such files are accepted.
std::string random_formats(TextMutator& random) {
  std::string text;
  for (int k = 0; k < 4; ++k) {
    text += "FORMAT " + random_piece(random, {"A", "B", "C"});
    if (k > 0) text += random_piece(random, {"", " FOLLOWS A", " FOLLOWS B"});
    text += "\n%s x" + random_piece(random, {"", " %s", " %t", "%s*", " /* c */%s+", "  "}) + "\n";
    for (std::size_t i = random.below(5); i > 0; --i) {
      text += random_piece(random, {"a ", "-a ", "b ", "c ", "-d "});
      text += random_piece(random, {"$1", "$2", "DEFAULT", "word", "\"two words\"", "\"\"",
                                    "\"\\\"\"", "PRINTF(\"%s-%s\", a, b)", "// c\n $1"}) +
              "\n";
    }
    text += "END\n" + random_piece(random, {"", "\n", "/* c */\n"});
  }
  return text;
}

struct Written {
  bool is_accepted;
  std::string formats;
  std::string classes;
};

bool can_make_classes(const LogDriver& set) {
  for (const FormatSpec* spec : set.specs()) {
    for (const MsgMapEntry* slot : spec->slots()) {
      const auto* print = dynamic_cast<const PrintMapEntry*>(slot);
      if (print != nullptr && print->unresolvedArgument(spec) != nullptr) return false;
    }
  }
  return true;
}

/// What the engine writes of a text; no classes where a PRINTF names no slot.
Written written(const TempDir& dir, const std::string& text) {
  LogDriver set;
  if (!fmt::read_formats(dir.write("in.fmt", text), set).is_accepted) return {};
  set.write_fmt((dir / "out.fmt").c_str());
  Written result{true, read_file(dir / "out.fmt"), ""};
  if (!can_make_classes(set)) return result;
  set.write_cds((dir / "out.cds").c_str());
  result.classes = read_file(dir / "out.cds");
  return result;
}

TEST(GeneratorTexts, OfRandomFormatsSayTheSameWhenReadBack) {
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 1000;
  TextMutator random(kSeed, {""});
  const TempDir dir;
  int accepted = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = random_formats(random);
    const Written first = written(dir, text);
    if (!first.is_accepted) continue;
    ++accepted;
    const Written again = written(dir, first.formats);
    ASSERT_TRUE(again.is_accepted) << "seed " << kSeed << ":\n" << text << first.formats;
    ASSERT_EQ(again.formats, first.formats) << "seed " << kSeed << ":\n" << text;
    ASSERT_EQ(again.classes, first.classes) << "seed " << kSeed << ":\n" << text;
  }
  EXPECT_GT(accepted, kRounds / 5);
}

TEST(GeneratorTexts, AreTheEngines) {
  EXPECT_EQ(run("cds", kGolden + "good.mail.fmt").out, read_file(kGolden + "good.mail.cds"));
  EXPECT_EQ(run("normalize", kGolden + "good.mail.fmt").out,
            read_file(kGolden + "good.mail.normal"));
}

TEST(GeneratorFiles, AreReplacedWholeAndKeepTheirPermissions) {
  const TempDir dir;
  const std::string path = dir.write("out.cds", "old");
  std::filesystem::permissions(path, std::filesystem::perms{0640});
  const ToolRun result =
      run_tool(ZEM_FMT_TOOL, {.arguments = {"cds", kGolden + "good.mail.fmt", "-o", path}});
  EXPECT_EQ(result.end + result.out + result.err, "exit 0");
  EXPECT_EQ(read_file(path), read_file(kGolden + "good.mail.cds"));
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});
}

TEST(GeneratorFiles, StayAsTheyWereWhenASlotCanNotBeMapped) {
  const TempDir dir;
  const std::string formats = dir.write(
      "bad.fmt", "FORMAT Good\n%s\na $1\nEND\nFORMAT Bad\n%s %s\nmsg PRINTF(\"%s\", gone)\nEND\n");
  const std::string path = dir.write("out.cds", "old");
  const ToolRun result = run_tool(ZEM_FMT_TOOL, {.arguments = {"cds", formats, "-o", path}});
  EXPECT_EQ(result.end, "exit 65");
  EXPECT_EQ(read_file(path), "old");
  EXPECT_THAT(result.err, HasSubstr("FORMAT Bad: slot msg: the PRINTF argument \"gone\""));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2)
      << "no draft is left";
}

TEST(Normalize, SaysWhichNamesAreLost) {
  const TempDir dir;
  const std::string formats =
      dir.write("lost.fmt",
                "FORMAT Lost\n%s\na $1\nmsg PRINTF(\"%s %s\", gone, a)\nEND\n"
                "FORMAT Heir FOLLOWS Lost\nx\nEND\n");
  const ToolRun result = run_tool(ZEM_FMT_TOOL, {.arguments = {"normalize", formats}});
  EXPECT_EQ(result.end, "exit 1");
  EXPECT_THAT(result.out, HasSubstr("\nmsg PRINTF(\"%s %s\",  !!!! , a)\n"));
  EXPECT_EQ(result.err,
            "zemad_fmt: FORMAT Lost: slot msg: the PRINTF argument \"gone\" names no slot of this "
            "FORMAT; !!!! is written in its place\n");
}

TEST(Normalize, RefusesWhatItCouldNotReadBack) {
  const TempDir dir;
  const std::string formats = dir.write("blanks.fmt", "FORMAT Two\na /* or */ b\nEND\n");
  const ToolRun result = run_tool(ZEM_FMT_TOOL, {.arguments = {"normalize", formats}});
  EXPECT_EQ(result.end + result.out, "exit 65");
  EXPECT_THAT(result.err, HasSubstr("FORMAT Two: a comment stands between two blanks"));
}

TEST(GeneratorFiles, StayAsTheyWereWhenTheDiskIsFull) {
  const TempDir dir;
  const std::string path = dir.write("site.cds", "old");
  const std::string script =
      "trap '' XFSZ; ulimit -f 1; exec '" ZEM_FMT_TOOL "' cds '" + kShipped + "' -o site.cds";
  const ToolRun run = run_tool("/bin/sh", {.arguments = {"-c", script}, .directory = dir.path()});
  EXPECT_EQ(run.end, "exit 74");
  EXPECT_EQ(run.err, "zemad_fmt: write site.cds: File too large\n");
  EXPECT_EQ(read_file(path), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1)
      << "no draft is left";
}

}  // namespace
}  // namespace zem::test
