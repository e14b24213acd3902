#include "agent/agent_comm.h"

#include <netdb.h>

#include <cerrno>
#include <csignal>
#include <memory>
#include <string>
#include <string_view>

#include "agent/agent_util.h"
#include "agent/delivery.h"
#include "agent/evt_buffer.h"
#include "agent/locations.h"
#include "agent/peer_io.h"
#include "agent/port_mapper.h"
#include "agent/posting.h"
#include "agent/sockobx.h"
#include "util/heap.h"

int zem_errno = 0;
int ZEMAD_no_connection = 0;
int send_events = 1;

namespace zem::agent {
namespace {

constexpr int kConnectionless = 0;
constexpr int kModeFromConfiguration = 2;

constexpr unsigned kServerProgram = 100'033'057;  ///< where the host's list of programs has none
constexpr unsigned kServerVersion = 1;

using HandlePtr = std::unique_ptr<zem_handle, util::FreeWith<zem_destroy_handle>>;

int configured_mode() {
  const char* const value = zem_agent_getenv("ConnectionMode");
  const std::string_view mode = value == nullptr ? "" : value;
  const bool oriented = mode == "co" || mode == "CO" || mode == "connection_oriented";
  return oriented ? kConnectionOriented : kConnectionless;
}

unsigned server_program() {
  const rpcent* entry = nullptr;
  do {
    errno = 0;
    entry = ::getrpcbyname("zem_server");
  } while (entry == nullptr && errno == EINTR);
  return entry == nullptr ? kServerProgram : static_cast<unsigned>(entry->r_number);
}

/// The caller's handle, or a temporary connectionless one for one event.
class Lease {
 public:
  explicit Lease(zem_handle* handle) : handle_(handle) {
    if (handle != nullptr) return;
    temporary_.reset(zem_create_handle(nullptr, 0, 0, kConnectionless));
    handle_ = temporary_.get();
  }
  [[nodiscard]] zem_handle* get() const { return handle_; }

 private:
  HandlePtr temporary_;
  zem_handle* handle_;
};

}  // namespace
}  // namespace zem::agent

zem_handle* zem_create_handle(const char* location, unsigned short port, int /*reserved*/,
                              int mode) {
  using namespace zem::agent;
  renew_grace();
  HandlePtr handle(std::make_unique<zem_handle>().release());
  if (common_agent_handle_init(handle.get(), location, nullptr) != 0) {
    zem_errno = kHandleFailed;
    return nullptr;
  }
  if (handle->test_mode) return handle.release();
  resolve_locations(*handle);
  find_ports(*handle, port);
  handle->mode = mode == kModeFromConfiguration ? configured_mode() : mode;
  if (handle->mode == kConnectionOriented) {
    connect_first(*handle);
    catch_pipe(SIGPIPE);
  }
  return handle.release();
}

int zem_put_event(zem_handle* handle, const char* text) {
  using namespace zem::agent;
  renew_grace();
  const Outgoing event = outgoing(handle, text);
  if (is_held_back(handle, event.text)) return 0;
  if (send_events == 0) return cache_event(event.text);
  const Lease lease(handle);
  return lease.get() == nullptr ? keep(event) : post(*lease.get(), event);
}

int zem_put_event_to_location(zem_handle* handle, const char* text) {
  return zem_put_event(handle, text);
}

void zem_destroy_handle(zem_handle* handle) {
  if (handle == nullptr) return;
  const std::unique_ptr<zem_handle> released(handle);
  zem::agent::close_connection(*handle);
  if (handle->test_stream != nullptr) std::fclose(handle->test_stream);
}

int zem_connection_status(const zem_handle* handle) {
  if (handle == nullptr) return 0;
  return handle->mode == zem::agent::kConnectionless || handle->ipc != nullptr ? 1 : 0;
}

int zem_toggle_send() {
  send_events = send_events == 0 ? 1 : 0;
  return send_events;
}

in_port_t zem_get_port(in_addr_t address) {
  using namespace zem::agent;
  auto& mapper = zem::util::current<PortMapper>();
  const in_port_t port = mapper.port_of(address, server_program(), kServerVersion);
  if (port == 0) zem_errno = kServerUnreachable;
  return port;
}

int zem_agent_init(const char* path) { return common_agent_init(path); }

int zem_method_agent_init(const char* path) { return common_agent_init(path); }
