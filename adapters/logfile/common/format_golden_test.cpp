// Format files below tests/golden/format/: good.NAME.fmt beside what it is written as (.normal) and
// its class definitions (.cds), bad.NAME.fmt beside what is reported (.messages). A new case is a
// new file. ZEM_UPDATE_GOLDEN=1 rewrites what is expected.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/format_set.h"
#include "tests/support/golden.h"
#include "tests/support/report_capture.h"
#include "tests/support/temp_dir.h"

namespace zem::test {
namespace {

const std::string kFolder = ZEM_SOURCE_DIR "/tests/golden/format/";

std::vector<std::string> inputs(const std::string& prefix) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    const std::string name = entry.path().filename();
    if (name.starts_with(prefix) && name.ends_with(".fmt")) names.push_back(entry.path().stem());
  }
  return names;
}

std::string test_name(const testing::TestParamInfo<std::string>& test) {
  return test.param.substr(test.param.find('.') + 1);
}

class GoodFormatFile : public testing::TestWithParam<std::string> {};

TEST_P(GoodFormatFile, IsWrittenAsExpectedAndReadsTheSameAgain) {
  const ReportCapture reports;
  FormatSet set(read_file(kFolder + GetParam() + ".fmt"));
  EXPECT_EQ(set.result(), 0) << reports.text();
  ASSERT_EQ(set.unresolvedSlot(), nullptr);
  expect_golden(kFolder + GetParam() + ".normal", set.fmt_text());
  expect_golden(kFolder + GetParam() + ".cds", set.cds());
  FormatSet again(set.fmt_text());
  EXPECT_EQ(again.fmt_text(), set.fmt_text());
  EXPECT_EQ(again.cds(), set.cds());
}

INSTANTIATE_TEST_SUITE_P(Golden, GoodFormatFile, testing::ValuesIn(inputs("good.")), test_name);

class BadFormatFile : public testing::TestWithParam<std::string> {};

TEST_P(BadFormatFile, IsReportedAsExpected) {
  const ReportCapture reports;
  const FormatSet set(read_file(kFolder + GetParam() + ".fmt"));
  EXPECT_EQ(set.result(), 1);
  expect_golden(kFolder + GetParam() + ".messages", reports.text());
}

INSTANTIATE_TEST_SUITE_P(Golden, BadFormatFile, testing::ValuesIn(inputs("bad.")), test_name);

}  // namespace
}  // namespace zem::test
