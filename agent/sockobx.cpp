#include "agent/sockobx.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <span>
#include <string_view>

#include "agent/connector.h"
#include "agent/peer_io.h"
#include "agent/wire_frame.h"

namespace zem::agent {
namespace {

/// Header and first part leave together, what is left follows unframed; 0 or the errno value.
int send_framed(int fd, std::string_view text, FrameWords words) {
  std::array<std::byte, kFrameBytesMax> frame{};
  const std::size_t frame_bytes = write_frame(text, words, frame);
  const int code = send_all(fd, std::span(frame).first(frame_bytes), kSendStallLimit);
  if (code != 0 || text.size() <= kFirstPartBytesMax) return code;
  return send_all(fd, std::as_bytes(std::span(text.substr(kFirstPartBytesMax))), kSendStallLimit);
}

}  // namespace
}  // namespace zem::agent

eipc_handle* eipc_create_remote_client(in_addr_t address, in_port_t port, int* err) {
  auto socket =
      zem::util::current<zem::agent::Connector>().connect(address, port, zem::agent::kConnectLimit);
  if (socket.has_value()) {
    return std::make_unique<eipc_handle>(eipc_handle{*std::move(socket)}).release();
  }
  const bool refused = socket.error().code == ECONNREFUSED;
  *err = refused ? zem::agent::kServerRefused : zem::agent::kServerUnreachable;
  return nullptr;
}

int eipc_send(eipc_handle* ipc, const char* data, int len, unsigned word2, unsigned word1,
              int* err) {
  if (len < 1) return 0;
  const std::string_view text(data, static_cast<std::size_t>(len));
  if (zem::agent::send_framed(ipc->socket.get(), text, {word1, word2}) == 0) return 0;
  ipc->is_broken = true;
  *err = zem::agent::kServerUnreachable;
  return -1;
}

void eipc_shutdown(eipc_handle* ipc) {
  zem::agent::discard_input(ipc->socket.get());
  ::shutdown(ipc->socket.get(), SHUT_RDWR);
}

void eipc_destroy_handle(eipc_handle* ipc) { std::unique_ptr<eipc_handle>{ipc}.reset(); }

void catch_pipe(int signal) {
  struct sigaction action {};
  action.sa_handler = catch_pipe;
  sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

namespace zem::agent {

std::size_t offer_messages(eipc_handle& ipc, std::string_view bytes) {
  const ssize_t taken =
      ::send(ipc.socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  return taken > 0 ? static_cast<std::size_t>(taken) : 0;
}

bool finish_message(eipc_handle& ipc, std::string_view rest) {
  ipc.is_broken = send_all(ipc.socket.get(), std::as_bytes(std::span(rest)), kSendStallLimit) != 0;
  return !ipc.is_broken;
}

}  // namespace zem::agent
