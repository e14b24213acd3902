/// The event client on real sockets: bytes on the wire, and servers that refuse, close, reset and
/// restart.
#include "tests/support/loopback.h"

#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "agent/agent_comm.h"
#include "agent/sockobx.h"
#include "tests/support/client_config.h"
#include "tests/support/fake_clock.h"
#include "util/heap.h"
#include "util/text.h"

namespace zem::agent {
namespace {

using namespace std::string_literals;
using test::LoopbackPort;
using util::UniqueFd;

constexpr std::size_t kHeaderBytes = 36;

using HandlePtr = std::unique_ptr<zem_handle, util::FreeWith<zem_destroy_handle>>;

std::string big_endian(std::size_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
  return bytes;
}

/// What the server must see of one event.
std::string on_the_wire(const std::string& text) {
  if (text.empty()) return "";
  return "<START>>" + std::string(20, '\0') + big_endian(text.size()) +
         big_endian(std::min<std::size_t>(text.size(), 2000)) + text;
}

ConnectionPtr connected_to(const LoopbackPort& server) {
  int error = 0;
  return ConnectionPtr(
      eipc_create_remote_client(htonl(INADDR_LOOPBACK), server.port_in_network_order(), &error));
}

/// Half of what the kernel gives as a send buffer is for its own use.
TEST(Connection, SegmentsAreSoSmallThatOneAcknowledgedLeavesRoomForMore) {
  LoopbackPort server;
  server.listen();
  const ConnectionPtr connection = connected_to(server);
  ASSERT_NE(connection, nullptr);
  const auto option = [&](int level, int name) {
    int value = 0;
    socklen_t size = sizeof value;
    ::getsockopt(connection->socket.get(), level, name, &value, &size);
    return value;
  };
  EXPECT_LE(4 * option(IPPROTO_TCP, TCP_MAXSEG), option(SOL_SOCKET, SO_SNDBUF) / 2);
}

class WireBytes : public testing::TestWithParam<std::size_t> {};

TEST_P(WireBytes, AreExactlyHeaderAndText) {
  LoopbackPort server;
  server.listen();
  std::string text(GetParam(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>(i % 251);
  const ConnectionPtr connection = connected_to(server);
  ASSERT_NE(connection, nullptr);
  int error = 0;
  EXPECT_EQ(eipc_send(connection.get(), text.data(), static_cast<int>(text.size()), 0, 0, &error),
            0);
  eipc_shutdown(connection.get());
  EXPECT_EQ(test::read_to_end(server.accept()), on_the_wire(text));
}

INSTANTIATE_TEST_SUITE_P(Lengths, WireBytes, testing::Values(0, 1, 1999, 2000, 2001, 4095));

TEST(Wire, ARefusalIsTellable) {
  const LoopbackPort nobody;
  int error = 0;
  EXPECT_EQ(
      eipc_create_remote_client(htonl(INADDR_LOOPBACK), nobody.port_in_network_order(), &error),
      nullptr);
  EXPECT_EQ(error, 67);
}

TEST(Wire, TheKernelTakesLittleForAServerThatDoesNotRead) {
  LoopbackPort server;
  server.listen();
  const ConnectionPtr connection = connected_to(server);
  ASSERT_NE(connection, nullptr);
  const UniqueFd never_read = server.accept();
  const std::string event(200, 'x');
  std::size_t taken = 0;
  while (::send(connection->socket.get(), event.data(), event.size(), MSG_DONTWAIT) > 0) {
    taken += event.size();
  }
  EXPECT_LT(taken, 256 * 1024U);  // megabytes, if it were left to the system
}

class ClientOnLoopback : public testing::Test {
 protected:
  ClientOnLoopback() { testing::internal::CaptureStderr(); }  // notices of the cache
  ~ClientOnLoopback() override { testing::internal::GetCapturedStderr(); }

  void configure(const std::vector<const LoopbackPort*>& servers) {
    std::string locations = "ServerLocation=";
    std::string ports = "ServerPort=";
    for (const LoopbackPort* server : servers) {
      locations += "127.0.0.1,";
      ports += server->port_text() + ",";
    }
    test::configure_client(dir_, locations + "\n" + ports + "\nConnectionMode=co\n");
    handle_.reset(zem_create_handle(nullptr, 0, 0, 2));
  }

  int post(const std::string& text) { return zem_put_event(handle_.get(), text.c_str()); }

  /// Waits until the client's socket has heard that its peer is gone.
  void await_bad_news() {
    pollfd connection{handle_->ipc->socket.get(), POLLRDHUP, 0};
    ASSERT_EQ(::poll(&connection, 1, 10'000), 1);
  }

  test::TempDir dir_;
  test::FakeClock clock_;
  util::ScopedDouble<util::Clock> clock_scope_{clock_};
  HandlePtr handle_;
};

TEST_F(ClientOnLoopback, StartsWithAWholeFrameAfterAResetAtAnyOffset) {
  LoopbackPort server;
  server.listen();
  configure({&server});
  const std::string event = "E;a=b;END\n";
  const std::string whole = on_the_wire(event + "\x01");
  UniqueFd connection = server.accept();
  for (std::size_t offset = 0; offset <= whole.size(); ++offset) {
    ASSERT_EQ(post(event), static_cast<int>(event.size()));
    ASSERT_EQ(test::read_bytes(connection, offset), whole.substr(0, offset));
    test::reset_connection(std::move(connection));
    await_bad_news();
    ASSERT_EQ(post(event), static_cast<int>(event.size()));
    connection = server.accept();
    ASSERT_EQ(test::read_bytes(connection, whole.size()), whole) << "reset at " << offset;
  }
}

/// A server that stops in good order: it closes the door, says goodbye, and reads what is still on
/// its way before it hangs up.
class RestartingServer {
 public:
  RestartingServer(int port, int restarts)
      : thread_([this, port, restarts] {
          for (int i = 0; i < restarts; ++i) run_once(port);
          is_done_ = true;
          run_once(port);
        }) {}
  ~RestartingServer() { thread_.join(); }

  [[nodiscard]] bool is_done() const { return is_done_; }
  /// Numbers received, after the client has closed its last connection.
  const std::vector<int>& join_and_take() {
    thread_.join();
    thread_ = std::thread([] {});
    return numbers_;
  }

 private:
  void run_once(int port) {
    UniqueFd connection;
    {
      LoopbackPort door(port);
      door.listen();
      connection = door.accept();
      for (int events = 0; events < 5 && read_event(connection); ++events) {
      }
      while (is_done_ && read_event(connection)) {
      }
    }
    ::shutdown(connection.get(), SHUT_WR);
    while (read_event(connection)) {
    }
  }

  /// Events are "N<number>;END\n\x01".
  bool read_event(const UniqueFd& connection) {
    const std::string header = test::read_bytes(connection, kHeaderBytes);
    if (header.size() < kHeaderBytes) return false;
    const std::string text =
        test::read_bytes(connection, static_cast<unsigned char>(header[kHeaderBytes - 1]));
    int number = -1;
    std::from_chars(text.data() + 1, text.data() + text.size(), number);
    numbers_.push_back(number);
    return true;
  }

  std::vector<int> numbers_;
  std::atomic<bool> is_done_{false};
  std::thread thread_;
};

TEST_F(ClientOnLoopback, LosesNothingInAThousandOrderlyRestarts) {
  constexpr int kRestarts = 1'000;
  const int port = LoopbackPort().port();
  RestartingServer server(port, kRestarts);
  test::configure_client(dir_, "ServerLocation=127.0.0.1\nServerPort=" + std::to_string(port) +
                                   "\nConnectionMode=co\n");
  handle_.reset(zem_create_handle(nullptr, 0, 0, 2));
  int posted = 0;
  const auto post_next = [&] { post(util::format_text("N%d;END\n", posted++)); };
  while (!server.is_done()) post_next();
  post_next();  // to the server that stays
  while (!test::read_file(test::client_cache_path(dir_)).empty()) post("");
  handle_.reset();

  std::vector<int> received = server.join_and_take();
  std::ranges::sort(received);
  std::vector<int> expected(static_cast<std::size_t>(posted));
  for (int i = 0; i < posted; ++i) expected[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(received.size(), expected.size());
  EXPECT_TRUE(received == expected) << "events were lost or came twice";
}

}  // namespace
}  // namespace zem::agent
