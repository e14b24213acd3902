#include "util/resolver.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace zem::util {
namespace {

// Only what every host can answer without a network.

TEST(SystemResolver, WhatIsNoHostHasNoAddress) {
  EXPECT_FALSE(system_implementation<Resolver>().address_of("256.256.256.256").has_value());
  EXPECT_FALSE(system_implementation<Resolver>().address_of("::1").has_value()) << "IPv4 only";
}

TEST(SystemResolver, LocalNameFitsWithItsNulOrFails) {
  std::array<char, 1024> name{};
  ASSERT_EQ(::gethostname(name.data(), name.size()), 0);
  const std::string expected = name.data();

  auto& resolver = system_implementation<Resolver>();
  const auto fits = resolver.local_host_name(expected.size() + 1);
  ASSERT_TRUE(fits.has_value());
  EXPECT_EQ(*fits, expected);

  const auto cut = resolver.local_host_name(expected.size());
  ASSERT_FALSE(cut.has_value());
  EXPECT_EQ(cut.error().code, ENAMETOOLONG);
}

}  // namespace
}  // namespace zem::util
