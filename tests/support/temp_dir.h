/// A directory of its own for a test, removed with all that is in it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zem::test {

class TempDir {
 public:
  TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  /// Path of `name` inside.
  [[nodiscard]] std::string operator/(std::string_view name) const { return path_ / name; }
  /// Writes the file and returns its path.
  std::string write(std::string_view name, std::string_view content) const;

 private:
  std::filesystem::path path_;
};

/// The whole file; empty when there is none.
[[nodiscard]] std::string read_file(const std::string& path);

}  // namespace zem::test
