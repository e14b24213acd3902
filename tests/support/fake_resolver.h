/// A name service that knows what the test told it, and counts what it was asked.
#pragma once

#include <arpa/inet.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "util/resolver.h"

namespace zem::test {

class FakeResolver : public util::Resolver {
 public:
  std::map<std::string, std::string> hosts;  ///< name -> dotted address, looked up both ways
  std::string local_name = "hostA";
  std::vector<std::string> asked;  ///< every name and dotted address asked for, in order

  std::optional<in_addr> address_of(const std::string& host) override {
    asked.push_back(host);
    const auto found = hosts.find(host);
    if (found == hosts.end()) return std::nullopt;
    in_addr address{};
    ::inet_aton(found->second.c_str(), &address);
    return address;
  }

  std::optional<std::string> name_of(in_addr address) override {
    const std::string dotted = ::inet_ntoa(address);
    asked.push_back(dotted);
    for (const auto& [name, known] : hosts) {
      if (known == dotted) return name;
    }
    return std::nullopt;
  }

  util::Result<std::string> local_host_name(std::size_t size) override {
    if (local_name.size() >= size) return util::Error{"gethostname", "", ENAMETOOLONG};
    return local_name;
  }
};

}  // namespace zem::test
