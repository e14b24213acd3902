/// The name service: hosts by name and by address, and the local host's own name. IPv4 only.
/// Every look-up may block for as long as the system's resolver does.
#pragma once

#include <netinet/in.h>

#include <optional>
#include <string>

#include "util/result.h"
#include "util/seam.h"

namespace zem::util {

class Resolver {
 public:
  virtual ~Resolver() = default;

  /// First IPv4 address of `host` as gethostbyname(3) finds it; nothing when there is none.
  [[nodiscard]] virtual std::optional<in_addr> address_of(const std::string& host) = 0;

  /// Official name of the host with this address as gethostbyaddr(3) finds it.
  [[nodiscard]] virtual std::optional<std::string> name_of(in_addr address) = 0;

  /// The local host's name exactly as gethostname(2) gives it, when it fits into `size` bytes with
  /// its NUL; the errno of the call otherwise.
  [[nodiscard]] virtual Result<std::string> local_host_name(std::size_t size) = 0;
};

template <>
Resolver& system_implementation<Resolver>();

}  // namespace zem::util
