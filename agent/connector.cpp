#include "agent/connector.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <string>

#include "agent/peer_io.h"

namespace zem::agent {
namespace {

using util::Error;
using util::Milliseconds;
using util::Result;
using util::UniqueFd;

/// What the kernel has taken from us and a server that dies has not read is lost, so it takes
/// little, where the system would let it grow to megabytes. A line with 50 ms to the server and
/// back still carries thousands of events a second.
constexpr int kSendBufferBytes = 32'768;
/// On loopback one segment would fill that buffer, and the peer's kernel acknowledges a lone
/// segment late: everybody would wait 40 ms for the timer. On other networks segments are smaller,
/// or hardly larger.
constexpr int kSegmentBytes = 8'192;

/// The protocol named "tcp"; 6 where a minimal system has no list of protocols.
int tcp_level() {
  static const int level = [] {
    const protoent* tcp = nullptr;
    do {
      errno = 0;
      tcp = ::getprotobyname("tcp");
    } while (tcp == nullptr && errno == EINTR);
    return tcp == nullptr ? static_cast<int>(IPPROTO_TCP) : tcp->p_proto;
  }();
  return level;
}

UniqueFd open_socket() {
  int fd = -1;
  do {
    fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  } while (fd == -1 && errno == EINTR);
  return UniqueFd(fd);
}

/// 0 when connected already, EINPROGRESS when it will be, else the errno value. After a signal the
/// question is repeated; by then the kernel may have connected the socket or be at it.
int start_connecting(int fd, const sockaddr_in& server) {
  while (::connect(fd, reinterpret_cast<const sockaddr*>(&server), sizeof server) == -1) {
    if (errno == EISCONN) return 0;
    if (errno == EALREADY) return EINPROGRESS;
    if (errno != EINTR) return errno;
  }
  return 0;
}

int finish_connecting(int fd, Milliseconds limit) {
  if (const int code = await_peer(fd, POLLOUT, limit); code != 0) return code;
  int outcome = 0;
  socklen_t size = sizeof outcome;
  if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &outcome, &size) == -1) return errno;
  return outcome;
}

std::string endpoint_text(const sockaddr_in& server) {
  std::array<char, INET_ADDRSTRLEN> dotted{};
  ::inet_ntop(AF_INET, &server.sin_addr, dotted.data(), dotted.size());
  return std::string(dotted.data()) + ":" + std::to_string(ntohs(server.sin_port));
}

class SystemConnector final : public Connector {
 public:
  Result<UniqueFd> connect(in_addr_t address, in_port_t port, Milliseconds limit) override {
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = port;
    server.sin_addr.s_addr = address;
    UniqueFd socket = open_socket();
    if (!socket.is_open()) return util::last_error("socket", endpoint_text(server));
    constexpr int kOn = 1;  // a failure costs a delay, nothing else
    ::setsockopt(socket.get(), tcp_level(), TCP_NODELAY, &kOn, sizeof kOn);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &kSendBufferBytes, sizeof kSendBufferBytes);
    ::setsockopt(socket.get(), tcp_level(), TCP_MAXSEG, &kSegmentBytes, sizeof kSegmentBytes);
    int code = start_connecting(socket.get(), server);
    if (code == EINPROGRESS) code = finish_connecting(socket.get(), limit);
    if (code != 0) return Error{"connect", endpoint_text(server), code};
    return socket;
  }
};

}  // namespace
}  // namespace zem::agent

namespace zem::util {

template <>
agent::Connector& system_implementation<agent::Connector>() {
  static agent::SystemConnector connector;
  return connector;
}

}  // namespace zem::util
