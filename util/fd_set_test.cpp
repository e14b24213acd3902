#include "util/fd_set.h"

#include <gtest/gtest.h>

namespace zem::util {
namespace {

TEST(FdSet, HoldsEveryDescriptorUpTo2047AndIgnoresTheRest) {
  FdSet set;
  for (const int fd : {0, 1023, 1024, 2047}) {
    set.set(fd);
    EXPECT_TRUE(set.is_set(fd)) << fd;
    set.clear(fd);
    EXPECT_TRUE(set.empty()) << fd;
  }
  for (const int fd : {-1, 2048, 1'000'000}) {
    set.set(fd);
    set.clear(fd);
    EXPECT_FALSE(set.is_set(fd)) << fd;
  }
  EXPECT_TRUE(set.empty());
}

}  // namespace
}  // namespace zem::util
