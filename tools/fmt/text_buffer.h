/// Text under construction that many small pieces are appended to: its room is kept when it is
/// cleared, so that in the steady state an append is a copy of the bytes and nothing else.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::fmt {

/// Writes into room that was made beforehand for all that is put.
class TextCursor {
 public:
  static constexpr std::size_t kNumberBytes = 20;  ///< of the longest number
  /// Behind all that is put, these are written to, too, and mean nothing.
  static constexpr std::size_t kSlackBytes = format::kBlockBytes;

  explicit TextCursor(char* at) noexcept : at_(at) {}

  void put(char c) noexcept { *at_++ = c; }
  void put(std::string_view text) noexcept {
    if (!text.empty()) std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
  }
  /// The same for a text at any byte of which a block may be read: without all that a copy of
  /// unknown length has to decide.
  void put_blocks(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size(); i += format::kBlockBytes) {
      format::ByteBlock(text.data() + i).store(at_ + i);
    }
    at_ += text.size();
  }
  void put_number(long number) noexcept {
    at_ = std::to_chars(at_, at_ + kNumberBytes, number).ptr;
  }
  /// Takes `bytes` that somebody else has written.
  void skip(std::size_t bytes) noexcept { at_ += bytes; }
  [[nodiscard]] char* at() const noexcept { return at_; }

 private:
  char* at_;
};

class TextBuffer {
 public:
  void append(std::string_view text) {
    TextCursor cursor = room(text.size());
    cursor.put(text);
    end_at(cursor);
  }
  void append(char c) { append(std::string_view(&c, 1)); }
  void append_number(long number) {
    TextCursor cursor = room(TextCursor::kNumberBytes);
    cursor.put_number(number);
    end_at(cursor);
  }

  /// For many pieces at once: room for `bytes` behind the text. What is put there belongs to the
  /// text as soon as `end_at` has the cursor back.
  [[nodiscard]] TextCursor room(std::size_t bytes) {
    const std::size_t more = bytes + TextCursor::kSlackBytes;
    if (room_.size() - size_ < more) grow(more);
    return TextCursor(room_.data() + size_);
  }
  void end_at(const TextCursor& cursor) noexcept {
    size_ = static_cast<std::size_t>(cursor.at() - room_.data());
  }

  /// Good until the next append. A block may be read at any byte of it.
  [[nodiscard]] std::string_view view() const { return {room_.data(), size_}; }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  void clear() noexcept { size_ = 0; }

 private:
  void grow(std::size_t more) { room_.resize(std::max(size_ + more, 2 * room_.size())); }

  std::vector<char> room_;
  std::size_t size_ = 0;
};

}  // namespace zem::fmt
