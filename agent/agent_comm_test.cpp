/// The event client on a fake clock, name service, port mapper and network: what goes where, in
/// which order, after which waits.
#include "agent/agent_comm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "agent/agent_util.h"
#include "agent/evt_buffer.h"
#include "agent/sockobx.h"
#include "tests/support/client_config.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_connector.h"
#include "tests/support/fake_port_mapper.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/temp_dir.h"
#include "util/heap.h"

namespace zem::agent {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using HandlePtr = std::unique_ptr<zem_handle, util::FreeWith<zem_destroy_handle>>;
using Texts = std::vector<std::string>;

/// The text of an event as callers write it, and as it leaves the house.
std::string text_of(const std::string& name) { return name + ";a=b;END\n"; }
std::string sent(const std::string& name) { return text_of(name) + "\x01"; }
int length_of(const std::string& name) { return static_cast<int>(text_of(name).size()); }

/// The event texts of a byte stream, their headers checked for lengths only (the rest has its own
/// test).
Texts events_in(const std::string& stream) {
  Texts events;
  std::size_t at = 0;
  while (at + 36 <= stream.size()) {
    EXPECT_EQ(stream.substr(at, 8), "<START>>");
    const auto length = static_cast<std::size_t>(static_cast<unsigned char>(stream[at + 30]) * 256 +
                                                 static_cast<unsigned char>(stream[at + 31]));
    events.push_back(stream.substr(at + 36, length));
    at += 36 + length;
  }
  EXPECT_EQ(at, stream.size());
  return events;
}

class EventClient : public testing::Test {
 protected:
  EventClient() {
    resolver_.hosts = {{"alpha", "10.0.0.1"}, {"beta", "10.0.0.2"}, {"gamma", "10.0.0.3"}};
    testing::internal::CaptureStderr();  // the cache gives notice of each event
  }

  ~EventClient() override { testing::internal::GetCapturedStderr(); }

  void configure(const std::string& lines) { test::configure_client(dir_, lines); }

  /// The handle that the daemon makes.
  void create() { handle_.reset(zem_create_handle(nullptr, 0, 0, 2)); }

  int post(const std::string& name) { return zem_put_event(handle_.get(), text_of(name).c_str()); }
  int post_empty() { return zem_put_event(handle_.get(), ""); }
  Texts take(const std::string& server) { return events_in(network_.take_bytes(server)); }
  Texts take_attempts() { return std::exchange(network_.attempts, {}); }
  [[nodiscard]] std::string cached() const {
    return test::read_file(test::client_cache_path(dir_));
  }

  test::TempDir dir_;
  test::FakeClock clock_;
  test::FakeResolver resolver_;
  test::FakeConnector network_;
  test::FakePortMapper mapper_;
  util::ScopedDouble<util::Clock> clock_scope_{clock_};
  util::ScopedDouble<util::Resolver> resolver_scope_{resolver_};
  util::ScopedDouble<Connector> network_scope_{network_};
  util::ScopedDouble<PortMapper> mapper_scope_{mapper_};
  HandlePtr handle_;

  const std::string alpha_ = "10.0.0.1:5529";
  const std::string beta_ = "10.0.0.2:5530";
  const std::string gamma_ = "10.0.0.3:5531";
  const std::string connectionless_ =
      "ServerLocation=alpha,beta,gamma\nServerPort=5529,5530,5531\n";
  const std::string oriented_ = connectionless_ + "ConnectionMode=co\n";
};

// --- What a caller is told ---

TEST_F(EventClient, TellsTheLengthOfTheCallersTextWhenItWasSent) {
  configure(connectionless_);
  create();
  network_.up = {alpha_};
  EXPECT_EQ(post("E"), length_of("E"));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
}

TEST_F(EventClient, TellsTheBytesCachedWhenNoServerTookIt) {
  configure(connectionless_);
  create();
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_EQ(cached(), sent("E"));
  EXPECT_EQ(ZEMAD_no_connection, 1);
  EXPECT_EQ(zem_errno, 67);
}

TEST_F(EventClient, TellsNoneWhenAFilterHeldItBack) {
  configure(connectionless_ + "Filter:Class=Held;\n");
  create();
  network_.up = {alpha_};
  EXPECT_EQ(post("Held"), 0);
  handle_->unfiltered = true;
  EXPECT_EQ(post("Held"), length_of("Held"));
}

TEST_F(EventClient, CachesWithoutConnectingWhileSendingIsOff) {
  configure(connectionless_);
  create();
  network_.up = {alpha_};
  EXPECT_EQ(zem_toggle_send(), 0);
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_THAT(network_.attempts, IsEmpty());
  EXPECT_EQ(ZEMAD_no_connection, 0);
  EXPECT_EQ(zem_toggle_send(), 1);
}

TEST_F(EventClient, SendsWithoutAHandleThroughATemporaryConnectionlessOne) {
  configure(oriented_);
  network_.up = {alpha_};
  EXPECT_EQ(zem_put_event_to_location(nullptr, text_of("E").c_str()), length_of("E"));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
  EXPECT_TRUE(network_.is_closed_by_client(alpha_));
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_));
}

TEST_F(EventClient, CachesEverythingWithoutALocation) {
  configure("");
  create();
  ASSERT_NE(handle_, nullptr);
  EXPECT_EQ(post("E"), length_of("E") + 1);
}

// --- Locations and ports ---

TEST_F(EventClient, TriesTheLocationsInTheirOrder) {
  configure(connectionless_);
  create();
  network_.up = {gamma_};
  post("E");
  EXPECT_THAT(network_.attempts,
              ElementsAre(alpha_, alpha_, beta_, beta_, gamma_));  // each name is looked up again
  EXPECT_THAT(take(gamma_), ElementsAre(sent("E")));
}

TEST_F(EventClient, GivesPortsByThePositionThatIsLeftWhenANameDoesNotResolve) {
  resolver_.hosts.erase("beta");
  configure(connectionless_);
  create();
  ASSERT_EQ(handle_->location_count, 2);
  EXPECT_EQ(handle_->locations[1], "gamma");
  EXPECT_EQ(ntohs(handle_->ports[1]), 5530);
}

TEST_F(EventClient, UsesAnExplicitLocationAndPortFirst) {
  mapper_.ports = {{"10.0.0.1", 7001}};
  configure("ServerLocation=alpha\nServerPort=5529\n");
  handle_.reset(zem_create_handle("10.9.9.9", 7000, 0, 0));
  ASSERT_EQ(handle_->location_count, 2);
  EXPECT_EQ(ntohs(handle_->ports[0]), 7000);
  EXPECT_EQ(ntohs(handle_->ports[1]), 7001);
  EXPECT_THAT(resolver_.asked, ElementsAre("alpha"));
}

struct PortCase {
  const char* name;
  const char* field;
  int port;  // 0: asked of the port mapper
};
class ServerPort : public EventClient, public testing::WithParamInterface<PortCase> {};

TEST_P(ServerPort, IsTakenOnlyWithinItsRange) {
  configure("ServerLocation=alpha\nServerPort="s + GetParam().field + "\n");
  create();
  EXPECT_EQ(ntohs(handle_->ports[0]), GetParam().port);
  EXPECT_EQ(handle_->portGiven[0], GetParam().port != 0);
  EXPECT_EQ(mapper_.asked.size(), GetParam().port == 0 ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Fields, ServerPort,
                         testing::Values(PortCase{"Lowest", "1", 1},
                                         PortCase{"Highest", "65535", 65535},
                                         PortCase{"TooHigh", "65536", 0},
                                         PortCase{"CutTo16BitsItWouldBe5529", "71065", 0},
                                         PortCase{"Negative", "-1", 0}, PortCase{"Zero", "0", 0},
                                         PortCase{"NoNumber", "zem", 0},
                                         PortCase{"WithTail", "5529x", 5529}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(EventClient, AsksThePortMapperForWhoWasGivenNoPort) {
  mapper_.ports = {{"10.0.0.2", 7002}};
  configure("ServerLocation=alpha,beta,gamma\nServerPort=5529\n");
  create();
  EXPECT_THAT(mapper_.asked, ElementsAre("10.0.0.2", "10.0.0.3"));
  EXPECT_EQ(mapper_.last_program, 100033057U);
  EXPECT_EQ(mapper_.last_version, 1U);
  EXPECT_EQ(ntohs(handle_->ports[1]), 7002);
  EXPECT_EQ(handle_->ports[2], 0);
  EXPECT_EQ(zem_errno, 38);
}

TEST_F(EventClient, NeverConnectsToPortZero) {
  configure("ServerLocation=10.0.0.1\nConnectionMode=CO\n");
  create();
  post("E");
  EXPECT_THAT(network_.attempts, IsEmpty());
}

TEST_F(EventClient, FindsAServerThatCameUpOnAnotherPort) {
  mapper_.ports = {{"10.0.0.1", 7000}};
  configure("ServerLocation=10.0.0.1\n");
  create();
  mapper_.ports = {{"10.0.0.1", 7001}};
  network_.up = {"10.0.0.1:7001"};
  EXPECT_EQ(post("E"), length_of("E"));
  EXPECT_THAT(network_.attempts, ElementsAre("10.0.0.1:7000", "10.0.0.1:7001"));
}

class EachMode : public EventClient, public testing::WithParamInterface<const char*> {};

TEST_P(EachMode, LooksTheNameUpAgainWhenALocationIsLost) {
  configure("ServerLocation=alpha\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
  create();
  resolver_.hosts["alpha"] = "10.0.0.7";
  network_.up = {"10.0.0.7:5529"};
  EXPECT_EQ(post("E"), length_of("E"));
  resolver_.hosts.clear();
  EXPECT_EQ(post("F"), length_of("F"));  // the new address is kept
  EXPECT_THAT(take("10.0.0.7:5529"), ElementsAre(sent("E"), sent("F")));
}

TEST_P(EachMode, DoesNotLookADottedAddressUp) {
  configure("ServerLocation=10.0.0.1\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
  create();
  post("E");
  EXPECT_THAT(resolver_.asked, IsEmpty());
}

TEST_P(EachMode, FlushesTheCacheOldestFirstAfterASuccess) {
  configure("ServerLocation=10.0.0.1\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
  create();
  post("E1");
  post("E2");
  EXPECT_EQ(ZEMAD_no_connection, 1);
  network_.up = {alpha_};
  EXPECT_EQ(post("E3"), length_of("E3"));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E3"), sent("E1"), sent("E2")));
  EXPECT_EQ(cached(), "");
  EXPECT_EQ(ZEMAD_no_connection, 0);
  post("E4");  // nothing is left to flush
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E4")));
}

INSTANTIATE_TEST_SUITE_P(Modes, EachMode, testing::Values("co", "connectionless"));

// --- The connection-oriented handle ---

struct ModeCase {
  const char* name;
  const char* value;
  int mode;
};
class ConnectionMode : public EventClient, public testing::WithParamInterface<ModeCase> {};

TEST_P(ConnectionMode, IsReadExactly) {
  configure("ConnectionMode="s + GetParam().value + "\n");
  create();
  EXPECT_EQ(handle_->mode, GetParam().mode);
  EXPECT_EQ(zem_connection_status(handle_.get()), GetParam().mode == 0 ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Values, ConnectionMode,
                         testing::Values(ModeCase{"Lower", "co", 1}, ModeCase{"Upper", "CO", 1},
                                         ModeCase{"Long", "connection_oriented", 1},
                                         ModeCase{"Mixed", "Co", 0}, ModeCase{"Empty", "", 0},
                                         ModeCase{"LongUpper", "CONNECTION_ORIENTED", 0}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(EventClient, ConnectsToTheFirstThatAnswersWhenTheHandleIsMade) {
  network_.up = {beta_, gamma_};
  configure(oriented_);
  create();
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_, beta_));
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(zem_connection_status(handle_.get()), 1);
  handle_.reset();
  EXPECT_TRUE(network_.is_closed_by_client(beta_));
}

TEST_F(EventClient, ReturnsToTheFirstLocationAfter64EventsOnAnother) {
  network_.up = {beta_};
  configure(oriented_);
  create();
  for (int i = 0; i < 64; ++i) post("E");
  EXPECT_EQ(take(beta_).size(), 64U);
  EXPECT_THAT(clock_.sleeps, IsEmpty());
  network_.up = {alpha_, beta_};
  EXPECT_EQ(post("Next"), length_of("Next"));
  EXPECT_EQ(clock_.sleeps, std::vector<util::Milliseconds>(24, 5s));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("Next")));
  EXPECT_THAT(take(beta_), IsEmpty());
  EXPECT_TRUE(network_.is_closed_by_client(beta_));
  for (int i = 0; i < 100; ++i) post("More");
  EXPECT_EQ(take(alpha_).size(), 100U);  // location 0 is never left
}

TEST_F(EventClient, NeverStopsSendingOnAConnectionThatStaysOpen) {
  configure(oriented_);
  network_.up = {alpha_};
  create();
  handle_->sentOnConnection = std::numeric_limits<int>::max();
  post("E0");
  post("E1");
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E0"), sent("E1")));
  EXPECT_EQ(handle_->sentOnConnection, std::numeric_limits<int>::max());
}

TEST_F(EventClient, CountsTheEventsOfAnotherConnectionFromItsStart) {
  network_.up = {beta_};
  configure(oriented_ + "RetryInterval=5\n");
  create();
  for (int i = 0; i < 65; ++i) post("E");
  EXPECT_EQ(clock_.sleeps.size(), 1U);
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(handle_->sentOnConnection, 1);
  EXPECT_EQ(take(beta_).size(), 65U);
}

struct IntervalCase {
  const char* name;
  const char* setting;
  std::size_t slices;
};
class RetryInterval : public EventClient, public testing::WithParamInterface<IntervalCase> {};

TEST_P(RetryInterval, IsWaitedInSlicesOfFiveSeconds) {
  network_.up = {beta_};
  configure(oriented_ + GetParam().setting);
  create();
  handle_->sentOnConnection = 64;
  post("E");
  EXPECT_EQ(clock_.sleeps, std::vector<util::Milliseconds>(GetParam().slices, 5s));
}

INSTANTIATE_TEST_SUITE_P(Settings, RetryInterval,
                         testing::Values(IntervalCase{"Default", "", 24},
                                         IntervalCase{"OneSecond", "RetryInterval=1\n", 1},
                                         IntervalCase{"NoMultiple", "RetryInterval=12\n", 3},
                                         IntervalCase{"Zero", "RetryInterval=0\n", 24},
                                         IntervalCase{"Negative", "RetryInterval=-1\n", 0}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(EventClient, CachesTheEventWhoseRetryWaitIsInterrupted) {
  network_.up = {alpha_, beta_};
  configure(oriented_);
  create();
  handle_->current = 1;
  handle_->sentOnConnection = 64;
  clock_.on_sleep = [](util::Milliseconds) { return false; };
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_EQ(clock_.sleeps.size(), 1U);
  EXPECT_EQ(cached(), sent("E"));
  EXPECT_EQ(zem_connection_status(handle_.get()), 0);
}

TEST_F(EventClient, NoticesAClosedConnectionBeforeAnEventIsLostInIt) {
  network_.up = {alpha_, beta_};
  configure(oriented_);
  create();
  post("E1");
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E1")));
  network_.stop(alpha_);
  EXPECT_EQ(post("E2"), length_of("E2"));
  EXPECT_THAT(take(beta_), ElementsAre(sent("E2")));
  EXPECT_THAT(clock_.sleeps, IsEmpty());  // nothing was sent: nothing to wait for
}

TEST_F(EventClient, KeepsAConnectionWhoseServerTalks) {
  network_.up = {alpha_};
  configure(oriented_);
  create();
  ASSERT_EQ(::send(network_.peers.back().socket.get(), "hello", 5, 0), 5);
  post("E");
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
}

TEST_F(EventClient, IsNotEndedByAWriteToAClosedConnection) {
  configure(oriented_);
  create();
  for (int deliveries = 0; deliveries < 2; ++deliveries) {
    ASSERT_EQ(::raise(SIGPIPE), 0);
    struct sigaction action {};
    ASSERT_EQ(::sigaction(SIGPIPE, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, catch_pipe);
  }
}

TEST_F(EventClient, ANewHandleGoesToTheLocationsThatWereReadLast) {
  network_.up = {alpha_, gamma_};
  configure(oriented_);
  create();
  post("E1");
  handle_.reset();
  configure("ServerLocation=gamma\nServerPort=5531\nConnectionMode=co\n");
  create();
  post("E2");
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E1")));
  EXPECT_TRUE(network_.is_closed_by_client(alpha_));
  EXPECT_THAT(take(gamma_), ElementsAre(sent("E2")));
}

// --- The empty event ---

TEST_F(EventClient, EmptyEventConnectsWithoutSendingInConnectionlessMode) {
  configure(connectionless_);
  create();
  post("E");
  network_.up = {alpha_};
  EXPECT_EQ(post_empty(), 0);
  ASSERT_EQ(network_.peers.size(), 2U);  // one without a byte, one for the cached event
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
  EXPECT_EQ(ZEMAD_no_connection, 0);
}

TEST_F(EventClient, EmptyEventCountsAsSentOnAnOpenConnection) {
  network_.up = {alpha_};
  configure(oriented_);
  create();
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(handle_->sentOnConnection, 1);
  EXPECT_EQ(network_.take_bytes(alpha_), "");
}

TEST_F(EventClient, EmptyEventOpensTheConnectionAndFlushes) {
  configure(oriented_);
  create();
  post("E");
  network_.up = {beta_};
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(handle_->sentOnConnection, 2);
  EXPECT_THAT(take(beta_), ElementsAre(sent("E")));
}

TEST_F(EventClient, EmptyEventMakesAnEmptyCacheWhenAllAreDown) {
  configure(connectionless_);
  create();
  EXPECT_EQ(post_empty(), 0);
  EXPECT_TRUE(std::filesystem::exists(test::client_cache_path(dir_)));
  EXPECT_EQ(cached(), "");
  EXPECT_EQ(ZEMAD_no_connection, 0);
}

TEST_F(EventClient, EmptyEventIsHeldBackInFilterModeInWithoutFilters) {
  configure(connectionless_ + "FilterMode=IN\n");
  create();
  network_.up = {alpha_};
  EXPECT_EQ(post_empty(), 0);
  EXPECT_THAT(network_.attempts, IsEmpty());
}

TEST_F(EventClient, EmptyEventPassesInFilterModeInWithFilters) {
  configure(connectionless_ + "FilterMode=IN\nFilter:Class=E;\n");
  create();
  network_.up = {alpha_};
  EXPECT_EQ(post_empty(), 0);
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_));
}

// --- Test mode ---

TEST_F(EventClient, WritesEventsToTheFileOfTestMode) {
  const std::string file = dir_ / "events";
  configure("TestMode=YES\nServerLocation=" + file + "\n");
  create();
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(post("E"), length_of("E"));
  EXPECT_EQ(test::read_file(file), "\n" + sent("E") + "\n");
  EXPECT_THAT(network_.attempts, IsEmpty());
  handle_.reset();
  create();  // a new handle starts the file anew
  EXPECT_EQ(test::read_file(file), "");
}

TEST_F(EventClient, CachesWhatTheFileOfTestModeDoesNotTake) {
  configure("TestMode=YES\nServerLocation=/dev/full\n");
  create();
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_EQ(cached(), sent("E"));
}

TEST_F(EventClient, HasNoHandleWhenTheFileOfTestModeCanNotBeOpened) {
  configure("TestMode=YES\n");
  create();
  EXPECT_EQ(handle_, nullptr);
  EXPECT_EQ(zem_errno, 48);
}

}  // namespace
}  // namespace zem::agent
