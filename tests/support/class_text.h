/// Classes written down in a test. Link zem_frame_test_support.
#pragma once

#include <string_view>

namespace zem::test {

/// The kernel runs the classes of `text` for the length of the scope; `text` must be accepted.
class ScopedClasses {
 public:
  explicit ScopedClasses(std::string_view text);
  ScopedClasses(const ScopedClasses&) = delete;
  ScopedClasses& operator=(const ScopedClasses&) = delete;
  ~ScopedClasses();
};

/// zemad_parse of `text`, under the file name "test.cds".
int parse_class_text(std::string_view text);

}  // namespace zem::test
