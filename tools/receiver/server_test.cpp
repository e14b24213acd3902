/// The receiving server on loopback, spoken to by the client's own socket level.
#include "tools/receiver/server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "agent/sockobx.h"
#include "agent/wire_frame.h"
#include "tests/support/fake_clock.h"
#include "tests/support/loopback.h"
#include "tests/support/temp_dir.h"
#include "tools/receiver/endpoint.h"

namespace zem::receiver {
namespace {

using namespace std::chrono_literals;
using agent::ConnectionPtr;

class Receiver : public testing::Test {
 protected:
  void start(ServerOptions options = {}) {
    options.listen_on = *parse_endpoint("127.0.0.1:0");
    options.report = [this](const std::string& line) { reports_ += line + "\n"; };
    server_ = std::make_unique<Server>(std::move(options), output_);
    const auto address = server_->start();
    ASSERT_TRUE(address.has_value());
    port_ = (*address).sin_port;
  }

  ConnectionPtr connect() {
    int error = 0;
    ConnectionPtr client(eipc_create_remote_client(htonl(INADDR_LOOPBACK), port_, &error));
    EXPECT_NE(client, nullptr);
    return client;
  }

  static void send(const ConnectionPtr& client, const std::string& text) {
    int error = 0;
    EXPECT_EQ(eipc_send(client.get(), text.data(), static_cast<int>(text.size()), 0, 0, &error), 0);
  }

  static std::string frame_of(const std::string& text) {
    std::array<std::byte, agent::kFrameBytesMax> frame{};
    const std::size_t bytes = agent::write_frame(text, {}, frame);
    return {reinterpret_cast<const char*>(frame.data()), bytes};
  }

  static void send_raw(const ConnectionPtr& client, const std::string& bytes) {
    EXPECT_EQ(::send(client->socket.get(), bytes.data(), bytes.size(), 0),
              static_cast<ssize_t>(bytes.size()));
  }

  /// Serves until `holds`; every turn waits for something to happen.
  void serve_until(const std::function<bool()>& holds) {
    for (int turns = 0; !holds() && turns < 1'000; ++turns) ASSERT_TRUE(server_->turn(1s).ok());
    ASSERT_TRUE(holds()) << reports_;
  }
  void serve_events(std::uint64_t count) {
    serve_until([&] { return server_->counters().events >= count; });
  }
  void serve_until_connections(std::size_t count) {
    serve_until([&] { return server_->connection_count() == count; });
  }

  [[nodiscard]] std::string written() const { return test::read_file(path_); }

  test::TempDir dir_;
  std::string path_ = dir_ / "events";
  test::FakeClock clock_;
  util::ScopedDouble<util::Clock> clock_scope_{clock_};
  EventOutput output_ = *EventOutput::to_file(path_);
  std::unique_ptr<Server> server_;
  in_port_t port_ = 0;
  std::string reports_;
};

TEST_F(Receiver, WritesTheEventsOfAllConnectionsInTheirOrder) {
  start();
  const ConnectionPtr first = connect();
  const ConnectionPtr second = connect();
  send(first, "A;END\n\x01");
  serve_events(1);
  send(second, "B;END\n\x01");
  serve_events(2);
  send(first, "C;b=" + std::string(5'000, 'c') + ";END\n\x01");
  serve_events(3);
  EXPECT_EQ(written(), "A;END\nB;END\nC;b=" + std::string(5'000, 'c') + ";END\n");
}

TEST_F(Receiver, ToleratesConnectionsWithoutAByte) {
  start();
  connect().reset();
  serve_until(
      [&] { return server_->counters().connections == 1 && server_->connection_count() == 0; });
  EXPECT_THAT(reports_, testing::EndsWith(" closed, events: 0\n"));
  EXPECT_EQ(server_->counters().cut_short, 0U);
}

TEST_F(Receiver, AViolationClosesOnlyItsOwnConnection) {
  start();
  const ConnectionPtr good = connect();
  const ConnectionPtr bad = connect();
  serve_until_connections(2);
  send_raw(bad, "EHLO example\r\n");
  serve_until_connections(1);
  EXPECT_EQ(server_->counters().violations, 1U);
  EXPECT_EQ(test::read_to_end(bad->socket), "");
  send(good, "A;END\n\x01");
  serve_events(1);
}

TEST_F(Receiver, HalfAFrameIsGivenThirtySecondsHoweverOftenAByteComes) {
  start();
  const ConnectionPtr slow = connect();
  const ConnectionPtr quiet = connect();
  send_raw(slow, frame_of("A;END\n\x01") + "<");
  serve_until([&] { return server_->connection_count() == 2 && server_->counters().events == 1; });
  for (const char* const next : {"S", "T", "A"}) {
    clock_.advance(9s);
    send_raw(slow, next);
    ASSERT_TRUE(server_->turn(1s).ok());
    ASSERT_EQ(server_->connection_count(), 2U);
  }
  clock_.advance(3s);
  ASSERT_TRUE(server_->turn(0s).ok());
  EXPECT_EQ(server_->counters().overdue, 1U);
  EXPECT_EQ(server_->connection_count(), 1U);
}

TEST_F(Receiver, ASilentConnectionIsGivenTenMinutes) {
  start();
  const ConnectionPtr client = connect();
  serve_until_connections(1);
  clock_.advance(599s);
  ASSERT_TRUE(server_->turn(0s).ok());
  ASSERT_EQ(server_->connection_count(), 1U);
  clock_.advance(1s);
  ASSERT_TRUE(server_->turn(0s).ok());
  EXPECT_EQ(server_->connection_count(), 0U);
  EXPECT_EQ(server_->counters().idle, 1U);
}

TEST_F(Receiver, LetsWaitWhoIsTooManyAndLosesNothingOfTheirs) {
  ServerOptions options;
  options.connections_max = 1;
  start(std::move(options));
  ConnectionPtr first = connect();
  const ConnectionPtr waiting = connect();
  send(waiting, "B;END\n\x01");
  send(first, "A;END\n\x01");
  serve_events(1);
  EXPECT_EQ(server_->counters().connections, 1U);
  first.reset();
  serve_events(2);
  EXPECT_EQ(written(), "A;END\nB;END\n");
}

TEST_F(Receiver, StopsWithEverythingWrittenThatWasSent) {
  start();
  ConnectionPtr open = connect();
  serve_until_connections(1);
  send(open, "A;END\n\x01");
  ConnectionPtr waiting = connect();  // never accepted before the stop
  send(waiting, "B;END\n\x01");
  open.reset();
  waiting.reset();
  ASSERT_TRUE(server_->stop().ok());
  EXPECT_THAT(written(),
              testing::AllOf(testing::HasSubstr("A;END\n"), testing::HasSubstr("B;END\n")));
  int error = 0;
  EXPECT_EQ(eipc_create_remote_client(htonl(INADDR_LOOPBACK), port_, &error), nullptr);
}

TEST_F(Receiver, GoesOnInANewFileAfterTheOldOneWasMovedAway) {
  start();
  const ConnectionPtr client = connect();
  send(client, "A;END\n\x01");
  serve_events(1);
  const std::string rotated = dir_ / "events.1";
  ASSERT_EQ(std::rename(path_.c_str(), rotated.c_str()), 0);
  ASSERT_TRUE(output_.reopen().ok());
  send(client, "B;END\n\x01");
  serve_events(2);
  EXPECT_EQ(test::read_file(rotated), "A;END\n");
  EXPECT_EQ(written(), "B;END\n");
}

TEST(EventOutput, KeepsOrEmptiesAnExistingFileThatOnlyItsOwnerReads) {
  const test::TempDir dir;
  const std::string path = dir / "events";
  std::string expected;
  for (const bool keep : {true, true, false}) {
    auto output = EventOutput::to_file(path);
    ASSERT_TRUE(output.has_value());
    ASSERT_TRUE(keep || output->clear().ok());
    output->lines() += "x\n";
    ASSERT_TRUE(output->flush().ok());
    EXPECT_EQ(test::read_file(path), keep ? expected += "x\n" : "x\n");
  }
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST(EventOutput, BeginsANewLineBehindOneThatWasCutOff) {
  const test::TempDir dir;
  const std::string path = dir.write("events", "A;END\nB;E");
  for (const char* const event : {"C;END\n", "D;END\n"}) {
    auto output = EventOutput::to_file(path);
    ASSERT_TRUE(output.has_value());
    output->lines() += event;
    ASSERT_TRUE(output->flush().ok());
  }
  EXPECT_EQ(test::read_file(path), "A;END\nB;E\nC;END\nD;END\n");
}

TEST(EventOutput, TellsThatTheDiskIsFull) {
  auto output = EventOutput::to_file("/dev/full");
  ASSERT_TRUE(output.has_value());
  output->lines() = "x\n";
  EXPECT_EQ(output->flush().error().text(), "write /dev/full: No space left on device");
}

TEST(Endpoint, IsAnAddressAndAPort) {
  for (const char* text : {"127.0.0.1:5529", "0.0.0.0:0", "1.2.3.4:65535"}) {
    const auto endpoint = parse_endpoint(text);
    ASSERT_TRUE(endpoint.has_value()) << text;
    EXPECT_EQ(endpoint_text(*endpoint), text);
  }
  for (const char* text :
       {"1.2.3.4:65536", "1.2.3.4:", "1.2.3.4", ":5529", "localhost:5529", "1.2.3.4:5529x"}) {
    EXPECT_FALSE(parse_endpoint(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace zem::receiver
