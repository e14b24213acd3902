/// Stands in for send(2) of the whole program, so that a test can let the system take as much of a
/// message as it likes. Link zem_send_script.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace zem::test {

/// Asked before each send, for the length of a scope: the bytes of `size` that the system may take,
/// or the errno value that it fails with, negative. Outside a scope all is taken.
class SendScript {
 public:
  explicit SendScript(std::function<ssize_t(std::size_t size)> allow);
  SendScript(const SendScript&) = delete;
  SendScript& operator=(const SendScript&) = delete;
  ~SendScript();
};

}  // namespace zem::test
