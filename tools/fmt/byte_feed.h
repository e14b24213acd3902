/// A text in memory as the byte source that the class language reads from. One at a time.
#pragma once

#include <string>
#include <string_view>

namespace zem::fmt {

class ByteFeed {
 public:
  explicit ByteFeed(std::string text) : text_(std::move(text)) { rest_ = text_; }
  ByteFeed(const ByteFeed&) = delete;
  ByteFeed& operator=(const ByteFeed&) = delete;
  ~ByteFeed() { rest_ = {}; }

  /// The next byte (0 to 255), or -1 at the end.
  static int next() {
    if (rest_.empty()) return -1;
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }

 private:
  std::string text_;
  inline static std::string_view rest_;
};

}  // namespace zem::fmt
