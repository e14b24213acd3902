// The tolerant reader of class files against the kernel's parser: both must agree on which files
// are in order.
#include "tools/fmt/class_outline.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/libzemad/parse_config.h"
#include "tests/support/temp_dir.h"
#include "tests/support/text_mutation.h"
#include "tools/fmt/class_file.h"

namespace zem::test {
namespace {

const std::vector<std::string> kClassWords = {
    "CLASS",  "SELECT", "FETCH", "MAP", "MAP_DEFAULT", "END",      "\nEND\n", "ATTR(=,", "KEY",
    "VALUE(", "PRINTF", "(",     ")",   ",",           ";",        ":",       "=",       "!=",
    ">",      "<=",     "\"",    "'",   "$V1",         "$F1",      "$N2",     "1",       "2:",
    "#",      "\n",     " ",     "x",   "SUBSTR(",     "CONTAINS", "EXISTS",  "OID",     "\"\""};

bool kernel_accepts(const TempDir& dir, const std::string& text) {
  const bool is_accepted = fmt::read_classes(dir.write("x.cds", text)).is_accepted;
  ZEMAD_KernelCleanup();
  return is_accepted;
}

TEST(ClassOutline, AgreesWithTheKernelOnWhatIsAFault) {
  const std::string source =
      "CLASS a\nSELECT\n1: ATTR(=,\"_event_id\"), KEY(=,\"\"), VALUE(PREFIX,\"1\");\n"
      "2: \"b\" = $V1;\nFETCH\n1: SUBSTR($V2, 1, 3);\n2: IPADDR($F1);\nMAP\nc = $F1;\n"
      "d = PRINTF(\"%s %s\", $V1, 5);\nEND\nMAP_DEFAULT\ne = 'x';\nEND\n";
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 500;
  TextMutator mutate(kSeed, kClassWords);
  const TempDir dir;
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = mutate(source);
    const fmt::ClassFileOutline outline = fmt::read_class_outline(fmt::SourceText("x.cds", text));
    ASSERT_EQ(outline.findings.empty(), kernel_accepts(dir, text))
        << "seed " << kSeed << ", round " << round << ":\n"
        << text;
  }
}

TEST(ClassOutline, HasTheClassesBehindAFault) {
  const fmt::SourceText source("x.cds",
                               "CLASS a\nMAP\nx y;\nEND\nCLASS b\nSELECT\n"
                               "1: \"_event_id\" = \"7\";\nMAP\nx = PRINTF(VALUE, 5);\nEND\n");
  const fmt::ClassFileOutline outline = fmt::read_class_outline(source);
  ASSERT_EQ(outline.classes.size(), 2);
  EXPECT_FALSE(outline.classes[0].is_whole);
  EXPECT_EQ(outline.classes[1].event_id(), "7");
  EXPECT_EQ(outline.classes[1].maps.at(0).format, "VALUE");
}

}  // namespace
}  // namespace zem::test
