#include "util/source_location.h"

#include <gtest/gtest.h>

#include "util/expect.h"

namespace zem::util {
namespace {

unsigned line_of_caller(SourceLocation where = SourceLocation::current()) { return where.line(); }

TEST(SourceLocation, IsThatOfTheCallThatLeftItOut) {
  const unsigned here = __LINE__;
  EXPECT_EQ(line_of_caller(), here + 1);
  EXPECT_DEATH(expect(false, "sky is blue"),
               "source_location_test.cpp:[0-9]+: internal error: sky is blue");
}

}  // namespace
}  // namespace zem::util
