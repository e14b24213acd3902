#include "tools/receiver/port_registration.h"

#include <rpc/clnt.h>
#include <rpc/pmap_clnt.h>
#include <rpc/rpc.h>

namespace zem::receiver {
namespace {

constexpr unsigned long kProgram = 100'033'057;
constexpr unsigned long kVersion = 1;

bool announce(in_port_t port) {
  ::pmap_unset(kProgram, kVersion);
  return ::pmap_set(kProgram, kVersion, IPPROTO_TCP, port) == TRUE;
}

}  // namespace

PortRegistration::PortRegistration(in_port_t port) : is_announced_(announce(port)) {}

PortRegistration::~PortRegistration() {
  if (is_announced_) ::pmap_unset(kProgram, kVersion);
}

}  // namespace zem::receiver
