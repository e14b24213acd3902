/// Cuts a byte stream, the FIFO's or a log's, into lines: whatever a read brought is given out line
/// by line, where it lies, and a line that no read has finished yet waits here for the rest. One
/// fixed buffer, no allocation, and no byte is copied but those of a line that a read cut in two.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace zem::format {

class LineReader {
 public:
  /// What is read and not yet given out is lost with the process, hence no more; with less, the
  /// reads become a quarter of what a message costs while many wait.
  static constexpr std::size_t kReadBytesMax = 16'384;
  /// With the newline. A longer line is given out in pieces of this size.
  static constexpr std::size_t kLineBytesMax = 511;

  /// The next line, its newline included, NUL-terminated and valid until the next call of `next`,
  /// `rest` or `fill`; null when more bytes are needed. A line without newline is a piece of 511
  /// bytes.
  [[nodiscard]] const char* next();
  /// True when `next` has a line to give out.
  [[nodiscard]] bool has_line() const { return next_bytes_ != 0; }
  /// For an input that ends (the FIFO never does): what is left behind its last newline, in the
  /// same form; null when nothing is. Only after `next` has returned null.
  [[nodiscard]] const char* rest();
  /// The line given out last, with whatever stands behind a NUL byte in it.
  [[nodiscard]] std::string_view whole_line() const { return given_; }

  /// Reads once. Only when `next` has returned null. Returns what read(2) returned, with its errno.
  ssize_t fill(int fd);
  /// True when the last read brought as many bytes as it could take: there may be more.
  [[nodiscard]] bool was_filled() const { return was_filled_; }

 private:
  [[nodiscard]] std::size_t find_line() const;
  const char* give_out(std::size_t bytes);
  void uncover();
  void keep_half_line();

  static constexpr std::size_t kHalfLineBytesMax = kLineBytesMax - 1;
  std::array<char, kHalfLineBytesMax + kReadBytesMax + 1> buffer_{};
  std::size_t begin_ = 0;       ///< of what was not given out yet
  std::size_t end_ = 0;         ///< of what was read
  std::size_t next_bytes_ = 0;  ///< of the line at `begin_`; 0 when it has no end yet
  std::string_view given_;
  char* cover_ = nullptr;  ///< the NUL behind the line given out: the first byte of the next one
  char covered_ = '\0';    ///< what stands there in truth
  bool was_filled_ = false;
};

}  // namespace zem::format
