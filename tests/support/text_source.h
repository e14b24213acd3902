/// A text in memory as the character source of zemad_parse, which takes a plain function: the
/// source that was made last is the one that is read.
#pragma once

#include <cstddef>
#include <string_view>

namespace zem::test {

class TextSource {
 public:
  /// `text` must outlive the reading.
  explicit TextSource(std::string_view text) {
    text_ = text;
    next_ = 0;
  }

  /// Bytes 0 to 255, then -1 for ever.
  static int next() {
    return next_ < text_.size() ? static_cast<unsigned char>(text_[next_++]) : -1;
  }

 private:
  static inline std::string_view text_;
  static inline std::size_t next_ = 0;
};

}  // namespace zem::test
