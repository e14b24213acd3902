/// Cuts a byte stream, the FIFO's or a log's, into lines: whatever a read brought is given out line
/// by line, and a line that no read has finished yet waits here for the rest. Two fixed buffers, no
/// allocation.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace zem::format {

class LineReader {
 public:
  static constexpr std::size_t kReadBytesMax = 2048;
  /// With the newline. A longer line is given out in pieces of this size.
  static constexpr std::size_t kLineBytesMax = 511;

  /// The next line, its newline included, NUL-terminated and valid until the next call; null when
  /// more bytes are needed. A line without newline is a piece of 511 bytes.
  [[nodiscard]] const char* next();
  /// For an input that ends (the FIFO never does): what is left behind its last newline, in the
  /// same form; null when nothing is. Only after `next` has returned null.
  [[nodiscard]] const char* rest();
  /// The line given out last, with whatever stands behind a NUL byte in it.
  [[nodiscard]] std::string_view whole_line() const { return {line_.data(), given_}; }

  /// Reads once. Only when `next` has returned null: bytes that it has not given out would be lost.
  /// Returns what read(2) returned, with its errno.
  ssize_t fill(int fd);

 private:
  [[nodiscard]] std::size_t bytes_to_take() const;
  const char* give_out();

  std::array<char, kReadBytesMax> buffer_{};
  std::size_t cursor_ = 0;
  std::size_t end_ = 0;
  std::array<char, kLineBytesMax + 1> line_{};
  std::size_t length_ = 0;
  std::size_t given_ = 0;  ///< bytes of the line given out last
};

}  // namespace zem::format
