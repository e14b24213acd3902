// A server on the loopback interface that is not always there.
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>

#include "tests/scenarios/scenario.h"
#include "tests/support/loopback.h"

namespace zem::test {
namespace {

class Server : public Scenario {
 protected:
  Server() { configure_cache("cache"); }

  void configure_cache(std::string_view name) {
    home_.rewrite(home_.conf_path(), "ServerLocation=127.0.0.1\nServerPort=" + port_.port_text() +
                                         "\nRetryInterval=1\nBufEvtPath=" + home_ / name + "\n");
  }

  /// What the server receives, connection after connection, until it is `size` bytes.
  [[nodiscard]] std::string receive(std::size_t size) const {
    std::string bytes;
    while (bytes.size() < size) bytes += read_to_end(port_.accept());
    return bytes;
  }

  LoopbackPort port_;
};

constexpr std::size_t kHeaderBytes = 36;
constexpr std::string_view kEvent = "Line;msg=one;END\n\x01";

TEST_F(Server, ReceivesCachedEventsWhenItComesBackWithoutAnotherMessage) {
  start();
  home_.log("one\n");
  ASSERT_TRUE(is_traced("Event could not be sent properly"));
  EXPECT_EQ(read_file(home_ / "cache"), kEvent);
  port_.listen();
  EXPECT_EQ(receive(kHeaderBytes + kEvent.size()).substr(kHeaderBytes), kEvent);
  EXPECT_TRUE(eventually([this] { return read_file(home_ / "cache").empty(); }));
  EXPECT_THAT(home_.trace(), testing::Not(testing::HasSubstr("GetEvent error")));
}

TEST_F(Server, ItsAbsenceDoesNotKeepACleanUpWaiting) {
  start();
  home_.log("one\n");
  ASSERT_TRUE(is_traced("Event could not be sent properly"));
  daemon().send(SIGTERM);
  EXPECT_TRUE(is_traced(kCleanedUp));
  EXPECT_EQ(read_file(home_ / "cache"), kEvent) << "the event is kept";
}

/// Thousands of lines at once, to a daemon that nobody traces: its events leave it in few calls.
class Flood : public Server {
 protected:
  static constexpr int kLines = 4'000;

  /// Returns when the daemon has connected.
  void begin() {
    home_.rewrite(home_.err_path(), "# silent\n");
    home_.configure("ConnectionMode=co");
    port_.listen();
    launch(usual_start());
    connection_ = port_.accept();
  }

  /// Lines numbered from `first` on.
  void log_lines(int first) {
    std::string lines;
    for (int i = first; i < first + kLines; ++i) lines += std::to_string(i) + "\n";
    home_.log(lines);
  }

  /// Nothing at the end of the connection.
  std::optional<std::string> next_event() {
    const std::string header = read_bytes(connection_, kHeaderBytes);
    if (header.empty()) return std::nullopt;
    return read_bytes(connection_, static_cast<unsigned char>(header.back()));
  }

  static std::string event(int number) {
    return "Line;msg=" + std::to_string(number) + ";END\n\x01";
  }

  util::UniqueFd connection_;
};

TEST_F(Flood, ArrivesWholeAndInOrderWhateverIsReloadedMeanwhile) {
  begin();
  int connections = 1;
  for (int i = 0; i < 4 * kLines; ++i) {
    if (i % kLines == 0) log_lines(i);
    if (i % kLines == kLines / 4) daemon().send(SIGHUP);
    auto received = next_event();
    for (; !received; received = next_event()) {
      connection_ = port_.accept();
      ++connections;
    }
    ASSERT_EQ(*received, event(i));
  }
  EXPECT_GE(connections, 4);
}

TEST_F(Flood, IsCutBetweenTwoEventsByACleanUp) {
  begin();
  log_lines(0);
  daemon().send(SIGTERM);
  int arrived = 0;
  for (auto received = next_event(); received; received = next_event()) {
    ASSERT_EQ(*received, event(arrived++));
  }
  EXPECT_TRUE(daemon().is_alive());
  EXPECT_FALSE(std::filesystem::exists(home_ / "cache"));
}

}  // namespace
}  // namespace zem::test
