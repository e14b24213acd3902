#include "adapters/logfile/common/SysLogMsg.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using zem::format::is_blank;

TEST(SysLogMsg, CursorGoesFromWordToWord) {
  SysLogMsg msg("  one \t two\n");
  EXPECT_EQ(msg.word(), "one");
  msg += 3;
  EXPECT_TRUE(msg.peek() == "");
  EXPECT_EQ(msg.whitesp(), 3);
  msg += 6;
  EXPECT_TRUE(msg.end());
  msg -= 3;
  EXPECT_EQ(msg.word(), "two");
  msg.reset();
  EXPECT_EQ(msg.word(), "one");
}

TEST(SysLogMsg, IsAtItsEndWithoutWords) {
  for (const char* text : {"", " ", "\n", " \t\v\f\r\n"}) {
    const SysLogMsg msg(text);
    EXPECT_TRUE(msg.end());
    EXPECT_EQ(msg.word(), "");
    EXPECT_EQ(msg.whitesp(), 0);
  }
}

TEST(SysLogMsg, BytesAbove127AreWordBytes) {
  std::string blanks;
  for (int byte = 0; byte < 256; ++byte) {
    if (is_blank(static_cast<char>(byte))) blanks += static_cast<char>(byte);
  }
  EXPECT_EQ(blanks, "\t\n\v\f\r ");
  EXPECT_EQ(SysLogMsg("a\xa0\xff"
                      "b c")
                .word(),
            "a\xa0\xff"
            "b");
}

}  // namespace
