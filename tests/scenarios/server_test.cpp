// A server on the loopback interface that is not always there.
#include <csignal>
#include <filesystem>

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

TEST_F(Server, ReceivesEachEventAtOnce) {
  port_.listen();
  start();
  home_.log("one\n");
  EXPECT_EQ(receive(kHeaderBytes + kEvent.size()).substr(kHeaderBytes), kEvent);
  EXPECT_TRUE(is_traced("Event sent to Z/EM"));
}

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

TEST_F(Server, TheCacheStaysWhereItWasAfterAReload) {
  start();
  configure_cache("other");
  ASSERT_TRUE(reload());
  home_.log("one\n");
  ASSERT_TRUE(is_traced("Event could not be sent properly"));
  EXPECT_EQ(read_file(home_ / "cache"), kEvent);
  EXPECT_FALSE(std::filesystem::exists(home_ / "other"));
}

}  // namespace
}  // namespace zem::test
