/// The making of TCP connections. Everything that talks to a server or a port mapper asks the
/// current connector for its socket, so that a test can be both ends.
#pragma once

#include <netinet/in.h>

#include "util/clock.h"
#include "util/result.h"
#include "util/seam.h"
#include "util/unique_fd.h"

namespace zem::agent {

/// How long one try may take. A server that is up answers within a round trip; five seconds allow
/// for one lost packet and its repetition (after one and three seconds), and with eight locations
/// the next one still gets its turn soon.
inline constexpr util::Milliseconds kConnectLimit{5'000};

class Connector {
 public:
  virtual ~Connector() = default;

  /// A connected, close-on-exec, non-blocking socket without Nagle's delay. Address and port are in
  /// network byte order. The error's code is ECONNREFUSED when nobody listens there, ETIMEDOUT
  /// after `limit`, EINTR when a pending reload or clean-up cut the try short.
  [[nodiscard]] virtual util::Result<util::UniqueFd> connect(in_addr_t address, in_port_t port,
                                                             util::Milliseconds limit) = 0;
};

}  // namespace zem::agent

namespace zem::util {
template <>
agent::Connector& system_implementation<agent::Connector>();
}
