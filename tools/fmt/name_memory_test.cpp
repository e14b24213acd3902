#include "tools/fmt/name_memory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/fake_resolver.h"

namespace zem::test {
namespace {

using testing::ElementsAre;

std::string dotted(std::optional<in_addr> address) {
  return address ? ::inet_ntoa(*address) : "none";
}

TEST(NameMemory, AsksForEachNameAndAddressOnce) {
  FakeResolver service;
  service.hosts["hostA"] = "192.0.2.7";
  fmt::NameMemory names(service);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(dotted(names.address_of("hostA")), "192.0.2.7");
    EXPECT_EQ(dotted(names.address_of("nobody")), "none");
    EXPECT_EQ(names.name_of({::inet_addr("192.0.2.7")}), "hostA");
    EXPECT_EQ(names.name_of({::inet_addr("192.0.2.8")}), std::nullopt);
  }
  EXPECT_THAT(service.asked, ElementsAre("hostA", "nobody", "192.0.2.7", "192.0.2.8"));
}

TEST(NameMemory, DoesNotGrowWithoutEnd) {
  FakeResolver service;
  fmt::NameMemory names(service);
  for (std::size_t i = 0; i <= fmt::NameMemory::kAnswersMax; ++i) {
    EXPECT_EQ(dotted(names.address_of("host" + std::to_string(i))), "none");
  }
  service.asked.clear();
  EXPECT_EQ(dotted(names.address_of("host0")), "none");
  EXPECT_THAT(service.asked, ElementsAre("host0"));
}

}  // namespace
}  // namespace zem::test
