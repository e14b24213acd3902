#include "util/resolver.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace zem::util {
namespace {

class SystemResolver final : public Resolver {
 public:
  std::optional<in_addr> address_of(const std::string& host) override {
    const hostent* found = ::gethostbyname(host.c_str());
    if (found == nullptr || found->h_addrtype != AF_INET || found->h_addr_list[0] == nullptr) {
      return std::nullopt;
    }
    in_addr address{};
    std::memcpy(&address, found->h_addr_list[0], sizeof address);
    return address;
  }

  std::optional<std::string> name_of(in_addr address) override {
    const hostent* found = ::gethostbyaddr(&address, sizeof address, AF_INET);
    if (found == nullptr || found->h_name == nullptr) return std::nullopt;
    return std::string(found->h_name);
  }

  Result<std::string> local_host_name(std::size_t size) override {
    std::string name(size, '\0');
    if (::gethostname(name.data(), name.size()) != 0) return last_error("gethostname", "");
    const std::size_t length = name.find('\0');
    if (length == std::string::npos) return Error{"gethostname", "", ENAMETOOLONG};
    name.resize(length);
    return name;
  }
};

}  // namespace

template <>
Resolver& system_implementation<Resolver>() {
  static SystemResolver resolver;
  return resolver;
}

}  // namespace zem::util
