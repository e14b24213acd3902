#include "adapters/logfile/common/SysLogUtils.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fake_resolver.h"
#include "util/seam.h"

namespace zem::test {
namespace {

TEST(SysLogUtils, FoundHostsAreAskedForOnceAndUnknownOnesEachTime) {
  FakeResolver resolver;
  resolver.hosts = {{"utils-known", "192.0.2.7"}, {"Utils-Known", "192.0.2.8"}};
  const util::ScopedDouble<util::Resolver> installed(resolver);
  SysLogUtils::init();
  for (int i = 0; i < 2; ++i) {
    EXPECT_STREQ(SysLogUtils::IPaddr("utils-known"), "192.0.2.7");
    EXPECT_STREQ(SysLogUtils::IPaddr("Utils-Known"), "192.0.2.8");
    EXPECT_STREQ(SysLogUtils::IPaddr("utils-unknown"), "???");
    SysLogUtils::init();
  }
  EXPECT_EQ(resolver.asked, (std::vector<std::string>{"utils-known", "Utils-Known", "utils-unknown",
                                                      "utils-unknown"}));
}

}  // namespace
}  // namespace zem::test
