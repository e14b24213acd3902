/// An event text under construction. Its room is kept from event to event, and there is always more
/// of it than the text needs: to add a piece is to copy its bytes, in blocks that may reach beyond
/// its end, without a call (BM_Text/slots:8: 0.8 of the time of appending to a std::string, and a
/// third where the values need quotes).
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "adapters/libzemad/quoting.h"

namespace zem::kernel {

class EventText {
 public:
  static constexpr std::size_t kBlockBytes = 16;

  EventText() = default;
  EventText(const EventText&) = delete;
  EventText& operator=(const EventText&) = delete;

  void clear() noexcept { at_ = buffer_.data(); }
  /// Appends `text`, behind which kBlockBytes more bytes may be read.
  void append(std::string_view text) {
    make_room(text.size());
    copy_blocks(text);
  }
  /// Appends `text`, as above, and `value`, in quotes where it needs them.
  void append(std::string_view text, std::string_view value) {
    make_room(text.size() + quoted_bytes_max(value.size()));
    copy_blocks(text);
    at_ = write_quoted(value, at_);
  }
  void append_quoted(std::string_view value) {
    make_room(quoted_bytes_max(value.size()));
    at_ = write_quoted(value, at_);
  }

  /// Good until the next change.
  [[nodiscard]] std::string_view view() const noexcept { return {buffer_.data(), size()}; }
  [[nodiscard]] std::size_t size() const noexcept {
    return static_cast<std::size_t>(at_ - buffer_.data());
  }

 private:
  void make_room(std::size_t bytes) {
    if (static_cast<std::size_t>(end_ - at_) < bytes) grow(bytes);
  }
  void grow(std::size_t bytes);
  void copy_blocks(std::string_view text) {
    std::size_t copied = 0;
    do {
      std::memcpy(at_ + copied, text.data() + copied, kBlockBytes);
      copied += kBlockBytes;
    } while (copied < text.size());
    at_ += text.size();
  }

  std::vector<char> buffer_ = std::vector<char>(kBlockBytes);
  char* at_ = buffer_.data();   ///< the end of the text
  char* end_ = buffer_.data();  ///< a block before the buffer's end
};

}  // namespace zem::kernel
