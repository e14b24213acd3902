/// Connections without a network: every server that the test calls up is the far end of a socket
/// pair, everything else refuses. Attempts are recorded in order.
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "agent/connector.h"
#include "util/expect.h"

namespace zem::test {

class FakeConnector : public agent::Connector {
 public:
  /// The far end of one connection that was made.
  struct Peer {
    std::string server;
    util::UniqueFd socket;
  };

  std::set<std::string> up;            ///< servers that accept: "10.0.0.1:5529"
  std::map<std::string, int> failing;  ///< errno for servers that do not; default ECONNREFUSED
  std::vector<std::string> attempts;   ///< every server asked for, in order
  std::vector<Peer> peers;             ///< far ends, in the order of their connections

  util::Result<util::UniqueFd> connect(in_addr_t address, in_port_t port,
                                       util::Milliseconds /*limit*/) override {
    const std::string server = name_of(address, port);
    attempts.push_back(server);
    if (!up.contains(server)) {
      const auto error = failing.find(server);
      return util::Error{"connect", server, error == failing.end() ? ECONNREFUSED : error->second};
    }
    std::array<int, 2> ends{};
    util::expect(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0,
                 "a socket pair can be made");
    peers.push_back({server, util::UniqueFd(ends[1])});
    return util::UniqueFd(ends[0]);
  }

  /// What has arrived at this server since the last call, over all its connections.
  std::string take_bytes(const std::string& server) {
    std::string bytes;
    for (const Peer& peer : peers) {
      if (peer.server == server) append_available(peer.socket.get(), bytes);
    }
    return bytes;
  }

  /// The server goes down: nobody listens any more, and its connections are closed.
  void stop(const std::string& server) {
    up.erase(server);
    std::erase_if(peers, [&](const Peer& peer) { return peer.server == server; });
  }

  /// True when the client has closed the last connection it made to this server.
  [[nodiscard]] bool is_closed_by_client(const std::string& server) const {
    for (auto peer = peers.rbegin(); peer != peers.rend(); ++peer) {
      if (peer->server != server) continue;
      char ignored = 0;
      return ::recv(peer->socket.get(), &ignored, 1, MSG_DONTWAIT | MSG_PEEK) == 0;
    }
    return false;
  }

 private:
  static std::string name_of(in_addr_t address, in_port_t port) {
    return std::string(::inet_ntoa(in_addr{address})) + ":" + std::to_string(ntohs(port));
  }

  static void append_available(int fd, std::string& bytes) {
    std::array<char, 4096> block{};
    ssize_t got = 0;
    while ((got = ::recv(fd, block.data(), block.size(), MSG_DONTWAIT)) > 0) {
      bytes.append(block.data(), static_cast<std::size_t>(got));
    }
  }
};

}  // namespace zem::test
