/// An owned file descriptor: closed when its holder goes, whichever way the holder goes.
#pragma once

#include <unistd.h>

#include <utility>

namespace zem::util {

class UniqueFd {
 public:
  explicit UniqueFd(int fd = -1) noexcept : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() {
    if (fd_ != -1) ::close(fd_);
  }

  [[nodiscard]] int get() const noexcept { return fd_; }
  [[nodiscard]] bool is_open() const noexcept { return fd_ != -1; }
  /// Hands the descriptor over to the caller, who closes it.
  [[nodiscard]] int release() noexcept { return std::exchange(fd_, -1); }
  /// Closes now instead of at the end of the scope.
  void reset() noexcept { *this = UniqueFd(); }

 private:
  int fd_;
};

}  // namespace zem::util
