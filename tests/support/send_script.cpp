#include "tests/support/send_script.h"

#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace {

std::function<ssize_t(std::size_t size)> allow_send;

}  // namespace

namespace zem::test {

SendScript::SendScript(std::function<ssize_t(std::size_t size)> allow) {
  allow_send = std::move(allow);
}

SendScript::~SendScript() { allow_send = nullptr; }

}  // namespace zem::test

/// In the place of the C library's.
extern "C" ssize_t send(int fd, const void* data, std::size_t size, int flags) {
  const ssize_t allowed = allow_send ? allow_send(size) : static_cast<ssize_t>(size);
  if (allowed >= 0) {
    return ::sendto(fd, data, static_cast<std::size_t>(allowed), flags, nullptr, 0);
  }
  errno = static_cast<int>(-allowed);
  return -1;
}
