#include "agent/agent_comm.h"

#include <netdb.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "agent/agent_util.h"
#include "agent/delivery.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "agent/file_blocks.h"
#include "agent/locations.h"
#include "agent/peer_io.h"
#include "agent/port_mapper.h"
#include "agent/sockobx.h"
#include "util/heap.h"

int zem_errno = 0;
int ZEMAD_no_connection = 0;
int send_events = 1;

namespace zem::agent {
namespace {

constexpr int kConnectionless = 0;
constexpr int kConnectionOriented = 1;
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

/// An event on its way: the caller's text, or the terminated copy that takes its place.
class Outgoing {
 public:
  Outgoing(const char* text, bool terminate) : text_(text), length_(std::strlen(text)) {
    if (!terminate) return;
    copy_.reset(zem_normalize_msg(text, static_cast<int>(length_)));
    if (copy_ != nullptr) text_ = copy_.get();
  }

  [[nodiscard]] const char* c_str() const { return text_; }
  [[nodiscard]] std::string_view text() const { return text_; }
  [[nodiscard]] bool empty() const { return length_ == 0; }
  /// Length of the caller's text: what he is told when the event was sent.
  [[nodiscard]] int accepted() const { return static_cast<int>(length_); }

 private:
  const char* text_;
  std::size_t length_;
  util::HeapText copy_;
};

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

/// Re-sent events passed the filters when they were new.
bool is_held_back(const zem_handle* handle, const Outgoing& event) {
  if (handle != nullptr && (handle->flushing || handle->unfiltered)) return false;
  return zem_filter_event(event.c_str(), 0) == 1;
}

/// Past the stream's buffer: a line is one write, which a signal does not break off, and one that
/// does not fit leaves no piece of it beside the cached copy.
bool write_to_test_file(std::FILE* stream, std::string_view event) {
  return append_to(::fileno(stream), std::string(event) + '\n').ok();
}

bool deliver(zem_handle& handle, std::string_view event) {
  return handle.mode == kConnectionOriented ? deliver_connected(handle, event)
                                            : deliver_connectionless(handle, event);
}

/// No location took the event: the cache does, unless it is switched off.
int keep(const Outgoing& event) {
  if (!event.empty()) ZEMAD_no_connection = 1;
  return zem_buffer_event(event.c_str());
}

int post_to_test_file(zem_handle& handle, const Outgoing& event) {
  return write_to_test_file(handle.test_stream, event.text()) ? event.accepted() : keep(event);
}

int post_to_server(zem_handle& handle, const Outgoing& event) {
  if (!deliver(handle, event.text())) return keep(event);
  if (!handle.flushing) zem_flush_events(&handle);
  return event.accepted();
}

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
  const Outgoing event(text, handle == nullptr || !handle->flushing);
  if (is_held_back(handle, event)) return 0;
  if (send_events == 0) return zem_buffer_event(event.c_str());
  const Lease lease(handle);
  if (lease.get() == nullptr) return keep(event);
  if (!event.empty()) ZEMAD_no_connection = 0;
  return lease.get()->test_mode ? post_to_test_file(*lease.get(), event)
                                : post_to_server(*lease.get(), event);
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
