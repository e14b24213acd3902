// A read brought two lines and a half, and the first is given out; the NUL that ends it covers the
// first byte of the second until the next call, which looks for the line's end before it is
// covered:
//
//   o n e \n \0 w o \n t h r
//            ^ begin_, next_bytes_ = 4
//
// The half line is moved to the front of the buffer when it is time to read on behind it.
#include "adapters/logfile/common/line_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zem::format {

/// Bytes of the line at `begin_`: up to its newline, or a piece; 0 when neither is there yet.
std::size_t LineReader::find_line() const {
  const char* first = buffer_.data() + begin_;
  const std::size_t most = std::min(end_ - begin_, kLineBytesMax);
  const auto* newline = static_cast<const char*>(std::memchr(first, '\n', most));
  if (newline != nullptr) return static_cast<std::size_t>(newline - first) + 1;
  return most == kLineBytesMax ? most : 0;
}

const char* LineReader::next() {
  uncover();
  return next_bytes_ == 0 ? nullptr : give_out(next_bytes_);
}

const char* LineReader::rest() {
  uncover();
  return begin_ == end_ ? nullptr : give_out(end_ - begin_);
}

const char* LineReader::give_out(std::size_t bytes) {
  given_ = {buffer_.data() + begin_, bytes};
  begin_ += bytes;
  next_bytes_ = find_line();
  cover_ = buffer_.data() + begin_;
  covered_ = std::exchange(*cover_, '\0');
  return given_.data();
}

void LineReader::uncover() {
  if (cover_ != nullptr) *std::exchange(cover_, nullptr) = covered_;
}

void LineReader::keep_half_line() {
  uncover();
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
}

ssize_t LineReader::fill(int fd) {
  keep_half_line();
  const std::size_t room = std::min(buffer_.size() - 1 - end_, kReadBytesMax);
  ssize_t count = -1;
  do {
    count = ::read(fd, buffer_.data() + end_, room);
  } while (count == -1 && errno == EINTR);
  was_filled_ = count == static_cast<ssize_t>(room);
  if (count > 0) end_ += static_cast<std::size_t>(count);
  next_bytes_ = find_line();
  return count;
}

}  // namespace zem::format
