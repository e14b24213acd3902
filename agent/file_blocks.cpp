#include "agent/file_blocks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zem::agent {
namespace {

using util::last_error;
using util::Result;
using util::Status;

/// Repeats `call` while a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// Switches O_APPEND on for a scope. In append mode Linux appends whatever offset is given, so the
/// descriptor can not stay in it.
class AppendMode {
 public:
  explicit AppendMode(int fd) : fd_(fd), flags_(::fcntl(fd, F_GETFL)) {
    is_on_ = flags_ != -1 && ::fcntl(fd, F_SETFL, flags_ | O_APPEND) == 0;
  }
  AppendMode(const AppendMode&) = delete;
  AppendMode& operator=(const AppendMode&) = delete;
  ~AppendMode() {
    if (is_on_) ::fcntl(fd_, F_SETFL, flags_);
  }
  [[nodiscard]] bool is_on() const { return is_on_; }

 private:
  int fd_;
  int flags_;
  bool is_on_;
};

/// Takes back `written` bytes at the end, unless somebody has appended behind them.
void take_back(int fd, off_t written) {
  if (written == 0) return;
  const off_t end = ::lseek(fd, 0, SEEK_CUR);
  const Result<off_t> size = size_of(fd);
  if (end == -1 || !size || *size != end) return;
  static_cast<void>(truncate_to(fd, end - written));
}

}  // namespace

Result<std::size_t> read_at(int fd, off_t at, std::span<char> out) {
  std::size_t done = 0;
  while (done < out.size()) {
    const ssize_t got = uninterrupted([&] {
      return ::pread(fd, out.data() + done, out.size() - done, at + static_cast<off_t>(done));
    });
    if (got == -1) return last_error("read", "cache file");
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

Status write_at(int fd, off_t at, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = uninterrupted([&] { return ::pwrite(fd, bytes.data(), bytes.size(), at); });
    if (put == -1) return last_error("write", "cache file");
    at += put;
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
  return {};
}

Status append_to(int fd, std::string_view bytes) {
  const AppendMode mode(fd);
  if (!mode.is_on()) return last_error("set append mode", "cache file");
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t put =
        uninterrupted([&] { return ::write(fd, bytes.data() + done, bytes.size() - done); });
    if (put == -1) {
      util::Error error = last_error("append", "cache file");
      take_back(fd, static_cast<off_t>(done));
      return error;
    }
    done += static_cast<std::size_t>(put);
  }
  return {};
}

Result<off_t> size_of(int fd) {
  struct stat status {};
  if (::fstat(fd, &status) != 0) return last_error("stat", "cache file");
  return status.st_size;
}

Status truncate_to(int fd, off_t size) {
  if (uninterrupted([&] { return ::ftruncate(fd, size); }) != 0) {
    return last_error("truncate", "cache file");
  }
  return {};
}

}  // namespace zem::agent
