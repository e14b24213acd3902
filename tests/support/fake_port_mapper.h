/// A port mapper that knows what the test told it, and records what it was asked.
#pragma once

#include <arpa/inet.h>

#include <map>
#include <string>
#include <vector>

#include "agent/port_mapper.h"

namespace zem::test {

class FakePortMapper : public agent::PortMapper {
 public:
  std::map<std::string, in_port_t> ports;  ///< dotted address -> port in host order
  std::vector<std::string> asked;          ///< every address asked, in order
  unsigned last_program = 0;
  unsigned last_version = 0;

  in_port_t port_of(in_addr_t address, unsigned program, unsigned version) override {
    asked.emplace_back(::inet_ntoa(in_addr{address}));
    last_program = program;
    last_version = version;
    const auto found = ports.find(asked.back());
    return found == ports.end() ? in_port_t{0} : htons(found->second);
  }
};

}  // namespace zem::test
