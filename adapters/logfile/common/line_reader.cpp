#include "adapters/logfile/common/line_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zem::format {

/// Up to the newline (included), the end of the buffer or the end of the line's room.
std::size_t LineReader::bytes_to_take() const {
  const char* first = buffer_.data() + cursor_;
  const std::size_t most = std::min(end_ - cursor_, kLineBytesMax - length_);
  const void* newline = std::memchr(first, '\n', most);
  return newline == nullptr
             ? most
             : static_cast<std::size_t>(static_cast<const char*>(newline) - first) + 1;
}

const char* LineReader::next() {
  const std::size_t taken = bytes_to_take();
  if (taken == 0) return nullptr;
  std::memcpy(line_.data() + length_, buffer_.data() + cursor_, taken);
  cursor_ += taken;
  length_ += taken;
  if (line_[length_ - 1] != '\n' && length_ < kLineBytesMax) return nullptr;
  return give_out();
}

const char* LineReader::rest() { return length_ == 0 ? nullptr : give_out(); }

const char* LineReader::give_out() {
  line_[length_] = '\0';
  given_ = std::exchange(length_, 0);
  return line_.data();
}

ssize_t LineReader::fill(int fd) {
  ssize_t count = -1;
  do {
    count = ::read(fd, buffer_.data(), buffer_.size());
  } while (count == -1 && errno == EINTR);
  cursor_ = 0;
  end_ = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count;
}

}  // namespace zem::format
