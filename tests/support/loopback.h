/// A server's end of real connections on the loopback interface.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <string>

#include "util/expect.h"
#include "util/unique_fd.h"

namespace zem::test {

/// A port on 127.0.0.1, held for the life of the object; connections are refused until `listen`.
class LoopbackPort {
 public:
  /// Port 0 takes any that is free.
  explicit LoopbackPort(int port = 0) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    util::expect(::bind(socket_.get(), generic, size) == 0, "a loopback port can be bound");
    util::expect(::getsockname(socket_.get(), generic, &size) == 0, "a bound port has a number");
    port_ = ntohs(address.sin_port);
  }

  LoopbackPort& listen() {
    util::expect(::listen(socket_.get(), 64) == 0, "a bound socket can listen");
    return *this;
  }
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] std::string port_text() const { return std::to_string(port_); }
  [[nodiscard]] in_port_t port_in_network_order() const {
    return htons(static_cast<in_port_t>(port_));
  }

  /// Waits for the next connection.
  [[nodiscard]] util::UniqueFd accept() const {
    return util::UniqueFd(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
  }

 private:
  util::UniqueFd socket_;
  int port_ = 0;
};

/// Waits for exactly `count` bytes; less only at the end of the stream.
inline std::string read_bytes(const util::UniqueFd& socket, std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t have = 0;
  while (have < count) {
    const ssize_t got = ::recv(socket.get(), bytes.data() + have, count - have, 0);
    if (got == -1 && errno == EINTR) continue;
    if (got <= 0) break;
    have += static_cast<std::size_t>(got);
  }
  bytes.resize(have);
  return bytes;
}

/// Waits for the end of the stream and returns all before it.
inline std::string read_to_end(const util::UniqueFd& socket) {
  std::string bytes;
  std::array<char, 4096> block{};
  while (true) {
    const ssize_t got = ::recv(socket.get(), block.data(), block.size(), 0);
    if (got == -1 && errno == EINTR) continue;
    if (got <= 0) return bytes;
    bytes.append(block.data(), static_cast<std::size_t>(got));
  }
}

/// Closes with a reset instead of an orderly end.
inline void reset_connection(util::UniqueFd socket) {
  const linger abortive{1, 0};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive);
}

}  // namespace zem::test
