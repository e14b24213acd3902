/// The server's entry in the local port mapper, through which clients without a configured port
/// find it.
#pragma once

#include <netinet/in.h>

namespace zem::receiver {

/// Announces a port for as long as the object lives.
class PortRegistration {
 public:
  /// `port` in host byte order. An entry that a server left behind is replaced.
  explicit PortRegistration(in_port_t port);
  PortRegistration(const PortRegistration&) = delete;
  PortRegistration& operator=(const PortRegistration&) = delete;
  ~PortRegistration();

  /// False when there is no port mapper or it refused.
  [[nodiscard]] bool is_announced() const { return is_announced_; }

 private:
  bool is_announced_;
};

}  // namespace zem::receiver
