/// The port mapper of a host: where a server that was given no port can be found.
#pragma once

#include <netinet/in.h>

#include "util/clock.h"
#include "util/seam.h"

namespace zem::agent {

/// Connecting and answering together. As long as a connection to the server itself may take: the
/// port mapper runs beside it and either answers at once or not at all.
inline constexpr util::Milliseconds kPortLookupLimit{5'000};

class PortMapper {
 public:
  virtual ~PortMapper() = default;

  /// TCP port (network byte order) at which `program`, `version` is registered on the host with
  /// this address (network byte order); 0 when it is not, or the port mapper could not be asked.
  [[nodiscard]] virtual in_port_t port_of(in_addr_t address, unsigned program,
                                          unsigned version) = 0;
};

}  // namespace zem::agent

namespace zem::util {
template <>
agent::PortMapper& system_implementation<agent::PortMapper>();
}
