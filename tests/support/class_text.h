/// Classes written down in a test. Link zem_frame_test_support.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zem::test {

/// The kernel runs the classes of `text` for the length of the scope; `text` must be accepted. Its
/// last line needs no newline here.
class ScopedClasses {
 public:
  explicit ScopedClasses(std::string_view text);
  ScopedClasses(const ScopedClasses&) = delete;
  ScopedClasses& operator=(const ScopedClasses&) = delete;
  ~ScopedClasses();
};

/// zemad_parse of `text`, under the file name "test.cds".
int parse_class_text(std::string_view text);

/// What came of a text.
struct ParsedClasses {
  int result;                         ///< of zemad_parse
  std::vector<std::string> messages;  ///< of the module PARSER, without the empty lines
  std::string text;                   ///< what was compiled, written back; nothing after a failure
  int constants;                      ///< how many distinct ones there are
};

/// parse_class_text that leaves no lists behind.
ParsedClasses parse_classes(std::string_view text);

}  // namespace zem::test
