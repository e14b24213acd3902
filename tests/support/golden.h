/// Expected output in files. With ZEM_UPDATE_GOLDEN set in the environment the files are rewritten
/// instead of compared, for a review like that of code.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/temp_dir.h"

namespace zem::test {

inline void expect_golden(const std::string& path, const std::string& actual) {
  if (std::getenv("ZEM_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << actual;
  } else {
    EXPECT_EQ(actual, read_file(path)) << "expected by " << path;
  }
}

}  // namespace zem::test
