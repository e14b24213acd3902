// What must stay true of the configuration that is shipped in etc/: it is clean, its classes are
// the generated ones, and the demonstration's log binds as it is meant to.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/format_reader.h"
#include "tests/support/golden.h"
#include "tests/support/report_capture.h"
#include "tests/support/temp_dir.h"

namespace zem::test {
namespace {

const std::string kEtc = ZEM_SOURCE_DIR "/etc/zemad_logfile";

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// A set with the shipped formats in it. The reporters are the caller's.
void read_shipped(LogDriver& set) { ASSERT_EQ(ReadFmt((kEtc + ".fmt").c_str(), &set), 0); }

/// What is left of a class file without the lines that a site wrote.
std::string without_site_lines(const std::string& text) {
  std::string rest;
  bool in_site_block = false;
  for (const std::string& line : lines_of(text)) {
    if (line == "# site: begin") in_site_block = true;
    const bool is_site = in_site_block || line.ends_with("# site");
    if (line == "# site: end") in_site_block = false;
    if (is_site || line.empty() || line.starts_with("#")) continue;
    rest += line + "\n";
  }
  return rest;
}

TEST(ShippedClasses, AreTheGeneratedOnesAndWhatTheSiteAdded) {
  const ReportCapture reports;
  LogDriver set;
  read_shipped(set);
  const TempDir dir;
  const std::string generated = dir / "generated.cds";
  ASSERT_EQ(set.write_cds(generated.c_str()), 1);
  EXPECT_EQ(without_site_lines(read_file(kEtc + ".cds")), read_file(generated));
}

/// Every message of the demonstration with the FORMAT that it is meant for.
TEST(ShippedFormats, BindTheDemonstrationAsMeant) {
  const ReportCapture reports;
  LogDriver set;
  read_shipped(set);
  set.orderFmts();
  std::string bound;
  for (const std::string& line :
       lines_of(read_file(ZEM_SOURCE_DIR "/script/demo-data/messages.log"))) {
    int index = 0;
    const FormatSpec* spec = set.bind((line + "\n").c_str(), index);
    bound +=
        (spec == nullptr ? std::string("-") : spec->getString()) + std::string("  ") + line + "\n";
  }
  expect_golden(ZEM_SOURCE_DIR "/tests/golden/shipped/demonstration.txt", bound);
}

}  // namespace
}  // namespace zem::test
