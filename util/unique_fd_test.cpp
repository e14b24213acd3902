#include "util/unique_fd.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <utility>

namespace zem::util {
namespace {

UniqueFd open_null() { return UniqueFd(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }
bool is_open(int fd) { return ::fcntl(fd, F_GETFD) != -1; }

TEST(UniqueFd, ClosesOnceAndByItsLastHolder) {
  int number = -1;
  {
    UniqueFd first = open_null();
    number = first.get();
    UniqueFd second = std::move(first);
    EXPECT_TRUE(is_open(number));
    EXPECT_EQ(second.get(), number);
  }
  EXPECT_FALSE(is_open(number));
}

TEST(UniqueFd, ReplacedDescriptorIsClosed) {
  UniqueFd held = open_null();
  const int before = held.get();
  held = open_null();
  EXPECT_FALSE(is_open(before));
  EXPECT_TRUE(is_open(held.get()));
  const int released = held.release();
  EXPECT_FALSE(held.is_open());
  EXPECT_TRUE(is_open(released));
  UniqueFd(released).reset();
  EXPECT_FALSE(is_open(released));
}

}  // namespace
}  // namespace zem::util
