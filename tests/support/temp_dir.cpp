#include "tests/support/temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "util/expect.h"

namespace zem::test {

TempDir::TempDir() {
  std::string pattern = std::filesystem::temp_directory_path() / "zem-test-XXXXXX";
  util::expect(::mkdtemp(pattern.data()) != nullptr, "a temporary directory can be made");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::write(std::string_view name, std::string_view content) const {
  std::string path = path_ / name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace zem::test
