/// gtest, and what tables of cases need: TEST_P over rows that begin with a name.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace zem::test {

/// Names each test after its row. The last argument of INSTANTIATE_TEST_SUITE_P.
inline constexpr auto kRowName = [](const auto& row) { return std::string(row.param.name); };

}  // namespace zem::test
