/// Text under construction that many small pieces are appended to: its room is kept when it is
/// cleared, so that in the steady state an append is a copy of the bytes and nothing else.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace zem::fmt {

class TextBuffer {
 public:
  void append(std::string_view text) {
    if (room_.size() - size_ < text.size()) grow(text.size());
    if (!text.empty()) std::memcpy(room_.data() + size_, text.data(), text.size());
    size_ += text.size();
  }
  void append(char c) { append(std::string_view(&c, 1)); }
  void append_number(long number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    append({digits.data(), static_cast<std::size_t>(end - digits.data())});
  }

  /// Good until the next append.
  [[nodiscard]] std::string_view view() const { return {room_.data(), size_}; }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  void clear() noexcept { size_ = 0; }

 private:
  void grow(std::size_t more) { room_.resize(std::max(size_ + more, 2 * room_.size())); }

  std::vector<char> room_;
  std::size_t size_ = 0;
};

}  // namespace zem::fmt
