/// Where a call stands in the source. A small subset of std::source_location under the same names,
/// so that it can go once the clang that builds the fuzz targets brings that one.
#pragma once

namespace zem::util {

class SourceLocation {
 public:
  /// As a default argument: the place of the call that left it out.
  static constexpr SourceLocation current(const char* file = __builtin_FILE(),
                                          unsigned line = __builtin_LINE()) noexcept {
    SourceLocation here;
    here.file_ = file;
    here.line_ = line;
    return here;
  }

  [[nodiscard]] constexpr const char* file_name() const noexcept { return file_; }
  [[nodiscard]] constexpr unsigned line() const noexcept { return line_; }

 private:
  const char* file_ = "";
  unsigned line_ = 0;
};

}  // namespace zem::util
