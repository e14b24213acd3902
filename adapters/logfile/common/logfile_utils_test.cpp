#include "adapters/logfile/common/logfile_utils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/libzemad/driver.h"
#include "tests/support/log_capture.h"
#include "util/heap.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class LogfileUtils : public testing::Test {
 protected:
  LogfileUtils() { ZEMAD_EventBufferInit(); }
  ~LogfileUtils() override {
    while (ZEMAD_FreeEventBuffer() == 0) continue;
  }
};

TEST_F(LogfileUtils, ANewEventHasAnEmptyFirstKeywordValue) {
  ASSERT_EQ(SysLogGetEventBuffer(), 0);
  EXPECT_STREQ(ZEMAD_AttributeEntryValueToString(in_keyword_values[0]), "");
}

TEST_F(LogfileUtils, AFullQueueIsReported) {
  for (int i = 0; i < kEventQueueMax; ++i) ASSERT_EQ(SysLogGetEventBuffer(), 0);
  const zem::test::LogCapture log(zem::log::kDrvSpec);
  EXPECT_EQ(SysLogGetEventBuffer(), -1);
  EXPECT_THAT(log.lines(), ElementsAre("MINOR DRVSPEC 1 ZEMAD_GetNewEventBuffer failed"));
  EXPECT_THAT(log.raw(), HasSubstr("logfile_utils line 0083"));
}

TEST_F(LogfileUtils, ASlotThatMemoryDoesNotSufficeForLeavesNothingBehind) {
  ASSERT_EQ(SysLogGetEventBuffer(), 0);
  int requests = 0;
  for (int result = -1; result != 0; ++requests) {
    const zem::util::ScopedAllocationFailure failure(requests);
    result = SysLogMakeAttribute("msg", nullptr, "disk full");
    EXPECT_EQ(SL_NbrElm(in_attribute_list), result == 0 ? 1 : 0) << "request " << requests;
  }
  EXPECT_GT(requests, 5) << "three entries with their texts at the least";
}

}  // namespace
