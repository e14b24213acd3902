#include "util/start_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temp_dir.h"

namespace zem::util {
namespace {

TEST(StartDirectory, RelativePathsKeepTheirMeaningAfterTheDirectoryChanged) {
  const std::filesystem::path original = std::filesystem::current_path();
  const test::TempDir home;
  const std::string absolute = home.write("settings", "key=value\n");
  std::filesystem::current_path(home.path());
  remember_start_directory();
  std::filesystem::current_path("/");

  struct stat status {};
  EXPECT_EQ(stat_from_start("settings", &status), 0);
  EXPECT_EQ(status.st_size, 10);
  EXPECT_NE(open_from_start("settings"), nullptr);
  EXPECT_NE(open_from_start(absolute.c_str()), nullptr);
  EXPECT_EQ(open_from_start("absent"), nullptr);
  EXPECT_EQ(errno, ENOENT);

  std::filesystem::current_path(original);
  remember_start_directory();
}

}  // namespace
}  // namespace zem::util
