/// The event client on a fake clock, name service, port mapper and network: what goes where, in
/// which order, after which waits.
#include "agent/agent_comm.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "agent/sockobx.h"
#include "tests/support/client_config.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_connector.h"
#include "tests/support/fake_port_mapper.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/table.h"
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

  /// Reads the configuration and makes the handle that the daemon makes, while `up` are up.
  void start(const std::string& lines, std::set<std::string> up = {}) {
    network_.up = std::move(up);
    test::configure_client(dir_, lines);
    handle_.reset(zem_create_handle(nullptr, 0, 0, 2));
  }

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

// --- What becomes of one event ---

const std::string kOneServer = "ServerLocation=10.0.0.1\nServerPort=5529\n";

struct FateCase {
  const char* name;
  std::string settings;
  bool is_up;          ///< the server 10.0.0.1:5529
  std::string event;   ///< its name; "": the empty event
  int result;          ///< 10 is the length of the caller's text
  Texts arrived;       ///< at the server
  const char* cached;  ///< null: there is no cache file
  int no_connection;
};
class EventFate : public EventClient, public testing::WithParamInterface<FateCase> {};

TEST_P(EventFate, IsToldToTheCaller) {
  const FateCase& tested = GetParam();
  start(tested.settings, tested.is_up ? std::set{alpha_} : std::set<std::string>{});
  EXPECT_EQ(tested.event.empty() ? post_empty() : post(tested.event), tested.result);
  EXPECT_EQ(take(alpha_), tested.arrived);
  EXPECT_EQ(std::filesystem::exists(test::client_cache_path(dir_)), tested.cached != nullptr);
  EXPECT_EQ(cached(), tested.cached == nullptr ? "" : tested.cached);
  EXPECT_EQ(ZEMAD_no_connection, tested.no_connection);
}

const std::string kSent = sent("E");
const FateCase kFateCases[] = {
    {"Sent", kOneServer, true, "E", 10, {kSent}, nullptr, 0},
    {"NoServerIsUp", kOneServer, false, "E", 11, {}, kSent.c_str(), 1},
    {"NoLocation", "", false, "E", 11, {}, kSent.c_str(), 1},
    {"HeldBack", kOneServer + "Filter:Class=E;\n", true, "E", 0, {}, nullptr, 0},
    {"CachingOff", kOneServer + "BufferEvents=NO\n", false, "E", -1, {}, nullptr, 1},
    {"TestFileIsFull",
     "TestMode=YES\nServerLocation=/dev/full\n",
     false,
     "E",
     11,
     {},
     kSent.c_str(),
     1},
    {"EmptyIsNeverSent", kOneServer, true, "", 0, {}, nullptr, 0},
    {"EmptyMakesAnEmptyCacheWhenAllAreDown", kOneServer, false, "", 0, {}, "", 0}};
INSTANTIATE_TEST_SUITE_P(Table, EventFate, testing::ValuesIn(kFateCases), test::kRowName);

TEST_F(EventClient, TellsWhyNoServerTookIt) {
  start(kOneServer);
  post("E");
  EXPECT_EQ(zem_errno, 67);
}

TEST_F(EventClient, FiltersNothingThatIsUnfiltered) {
  start(kOneServer + "Filter:Class=Held;\n", {alpha_});
  handle_->unfiltered = true;
  EXPECT_EQ(post("Held"), length_of("Held"));
}

/// Without filters nothing is ever sent in this mode, and nobody is connected to.
TEST_F(EventClient, EmptyEventPassesInFilterModeInOnlyWithFilters) {
  for (const char* filter : {"", "Filter:Class=E;\n"}) {
    start(kOneServer + "FilterMode=IN\n" + filter, {alpha_});
    EXPECT_EQ(post_empty(), 0);
    EXPECT_EQ(take_attempts().size(), *filter == '\0' ? 0U : 1U);
  }
}

TEST_F(EventClient, CachesWithoutConnectingWhileSendingIsOff) {
  start(connectionless_, {alpha_});
  EXPECT_EQ(zem_toggle_send(), 0);
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_THAT(network_.attempts, IsEmpty());
  EXPECT_EQ(ZEMAD_no_connection, 0);
  EXPECT_EQ(zem_toggle_send(), 1);
}

TEST_F(EventClient, SendsWithoutAHandleThroughATemporaryConnectionlessOne) {
  test::configure_client(dir_, oriented_);
  network_.up = {alpha_};
  EXPECT_EQ(zem_put_event_to_location(nullptr, text_of("E").c_str()), length_of("E"));
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
  EXPECT_TRUE(network_.is_closed_by_client(alpha_));
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_));
}

// --- Locations and ports ---

TEST_F(EventClient, TriesTheLocationsInTheirOrder) {
  start(connectionless_, {gamma_});
  post("E");
  EXPECT_THAT(network_.attempts,
              ElementsAre(alpha_, alpha_, beta_, beta_, gamma_));  // each name is looked up again
  EXPECT_THAT(take(gamma_), ElementsAre(sent("E")));
}

TEST_F(EventClient, GivesPortsByThePositionThatIsLeftWhenANameDoesNotResolve) {
  resolver_.hosts.erase("beta");
  start(connectionless_);
  ASSERT_EQ(handle_->location_count, 2);
  EXPECT_EQ(handle_->locations[1], "gamma");
  EXPECT_EQ(ntohs(handle_->ports[1]), 5530);
}

TEST_F(EventClient, UsesAnExplicitLocationAndPortFirst) {
  mapper_.ports = {{"10.0.0.1", 7001}};
  test::configure_client(dir_, "ServerLocation=alpha\nServerPort=5529\n");
  handle_.reset(zem_create_handle("10.9.9.9", 7000, 0, 0));
  ASSERT_EQ(handle_->location_count, 2);
  EXPECT_EQ(ntohs(handle_->ports[0]), 7000);
  EXPECT_EQ(ntohs(handle_->ports[1]), 7001);
  EXPECT_THAT(resolver_.asked, ElementsAre("alpha"));
}

/// A setting and the number that it comes to.
struct SettingCase {
  const char* name;
  std::string text;
  int number;
};
class ServerPort : public EventClient, public testing::WithParamInterface<SettingCase> {};

TEST_P(ServerPort, IsTakenOnlyWithinItsRange) {
  start("ServerLocation=alpha\nServerPort="s + GetParam().text + "\n");
  EXPECT_EQ(ntohs(handle_->ports[0]), GetParam().number);
  EXPECT_EQ(handle_->portGiven[0], GetParam().number != 0);
  EXPECT_EQ(mapper_.asked.size(), GetParam().number == 0 ? 1U : 0U);
}

const SettingCase kPortCases[] = {
    {"Highest", "65535", 65535}, {"TooHigh", "65536", 0}, {"CutTo16BitsItWouldBe5529", "71065", 0},
    {"Negative", "-1", 0},       {"NoNumber", "zem", 0},  {"WithTail", "5529x", 5529}};
INSTANTIATE_TEST_SUITE_P(Fields, ServerPort, testing::ValuesIn(kPortCases), test::kRowName);

TEST_F(EventClient, AsksThePortMapperForWhoWasGivenNoPort) {
  mapper_.ports = {{"10.0.0.2", 7002}};
  start("ServerLocation=alpha,beta,gamma\nServerPort=5529\n");
  EXPECT_THAT(mapper_.asked, ElementsAre("10.0.0.2", "10.0.0.3"));
  EXPECT_EQ(mapper_.last_program, 100033057U);
  EXPECT_EQ(mapper_.last_version, 1U);
  EXPECT_EQ(ntohs(handle_->ports[1]), 7002);
  EXPECT_EQ(handle_->ports[2], 0);
  EXPECT_EQ(zem_errno, 38);
}

TEST_F(EventClient, NeverConnectsToPortZero) {
  start("ServerLocation=10.0.0.1\nConnectionMode=CO\n");
  post("E");
  EXPECT_THAT(network_.attempts, IsEmpty());
}

TEST_F(EventClient, FindsAServerThatCameUpOnAnotherPort) {
  mapper_.ports = {{"10.0.0.1", 7000}};
  start("ServerLocation=10.0.0.1\n");
  mapper_.ports = {{"10.0.0.1", 7001}};
  network_.up = {"10.0.0.1:7001"};
  EXPECT_EQ(post("E"), length_of("E"));
  EXPECT_THAT(network_.attempts, ElementsAre("10.0.0.1:7000", "10.0.0.1:7001"));
}

class EachMode : public EventClient, public testing::WithParamInterface<const char*> {};

TEST_P(EachMode, LooksTheNameUpAgainWhenALocationIsLost) {
  start("ServerLocation=alpha\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
  resolver_.hosts["alpha"] = "10.0.0.7";
  network_.up = {"10.0.0.7:5529"};
  EXPECT_EQ(post("E"), length_of("E"));
  resolver_.hosts.clear();
  EXPECT_EQ(post("F"), length_of("F"));  // the new address is kept
  EXPECT_THAT(take("10.0.0.7:5529"), ElementsAre(sent("E"), sent("F")));
}

TEST_P(EachMode, DoesNotLookADottedAddressUp) {
  start("ServerLocation=10.0.0.1\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
  post("E");
  EXPECT_THAT(resolver_.asked, IsEmpty());
}

TEST_P(EachMode, FlushesTheCacheOldestFirstAfterASuccess) {
  start("ServerLocation=10.0.0.1\nServerPort=5529\nConnectionMode="s + GetParam() + "\n");
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

class ConnectionMode : public EventClient, public testing::WithParamInterface<SettingCase> {};

TEST_P(ConnectionMode, IsReadExactly) {
  start("ConnectionMode="s + GetParam().text + "\n");
  EXPECT_EQ(handle_->mode, GetParam().number);
  EXPECT_EQ(zem_connection_status(handle_.get()), GetParam().number == 0 ? 1 : 0);
}

const SettingCase kModeCases[] = {{"Lower", "co", 1},
                                  {"Upper", "CO", 1},
                                  {"Long", "connection_oriented", 1},
                                  {"Mixed", "Co", 0},
                                  {"LongUpper", "CONNECTION_ORIENTED", 0}};
INSTANTIATE_TEST_SUITE_P(Values, ConnectionMode, testing::ValuesIn(kModeCases), test::kRowName);

TEST_F(EventClient, ConnectsToTheFirstThatAnswersWhenTheHandleIsMade) {
  start(oriented_, {beta_, gamma_});
  EXPECT_THAT(network_.attempts, ElementsAre(alpha_, beta_));
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(zem_connection_status(handle_.get()), 1);
  handle_.reset();
  EXPECT_TRUE(network_.is_closed_by_client(beta_));
}

TEST_F(EventClient, ReturnsToTheFirstLocationAfter64EventsOnAnother) {
  start(oriented_, {beta_});
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
  start(oriented_, {alpha_});
  handle_->sentOnConnection = std::numeric_limits<int>::max();
  post("E0");
  post("E1");
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E0"), sent("E1")));
  EXPECT_EQ(handle_->sentOnConnection, std::numeric_limits<int>::max());
}

TEST_F(EventClient, CountsTheEventsOfAnotherConnectionFromItsStart) {
  start(oriented_ + "RetryInterval=5\n", {beta_});
  for (int i = 0; i < 65; ++i) post("E");
  EXPECT_EQ(clock_.sleeps.size(), 1U);
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(handle_->sentOnConnection, 1);
  EXPECT_EQ(take(beta_).size(), 65U);
}

class RetryInterval : public EventClient, public testing::WithParamInterface<SettingCase> {};

TEST_P(RetryInterval, IsWaitedInSlicesOfFiveSeconds) {
  start(oriented_ + GetParam().text, {beta_});
  handle_->sentOnConnection = 64;
  post("E");
  EXPECT_EQ(clock_.sleeps,
            std::vector<util::Milliseconds>(static_cast<std::size_t>(GetParam().number), 5s));
}

const SettingCase kIntervalCases[] = {{"Default", "", 24},
                                      {"OneSecond", "RetryInterval=1\n", 1},
                                      {"NoMultiple", "RetryInterval=12\n", 3},
                                      {"Zero", "RetryInterval=0\n", 24},
                                      {"Negative", "RetryInterval=-1\n", 0}};
INSTANTIATE_TEST_SUITE_P(Settings, RetryInterval, testing::ValuesIn(kIntervalCases),
                         test::kRowName);

TEST_F(EventClient, CachesTheEventWhoseRetryWaitIsInterrupted) {
  start(oriented_, {alpha_, beta_});
  handle_->current = 1;
  handle_->sentOnConnection = 64;
  clock_.on_sleep = [](util::Milliseconds) { return false; };
  EXPECT_EQ(post("E"), length_of("E") + 1);
  EXPECT_EQ(clock_.sleeps.size(), 1U);
  EXPECT_EQ(cached(), sent("E"));
  EXPECT_EQ(zem_connection_status(handle_.get()), 0);
}

TEST_F(EventClient, NoticesAClosedConnectionBeforeAnEventIsLostInIt) {
  start(oriented_, {alpha_, beta_});
  post("E1");
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E1")));
  network_.stop(alpha_);
  EXPECT_EQ(post("E2"), length_of("E2"));
  EXPECT_THAT(take(beta_), ElementsAre(sent("E2")));
  EXPECT_THAT(clock_.sleeps, IsEmpty());  // nothing was sent: nothing to wait for
}

TEST_F(EventClient, IsNotEndedByAWriteToAClosedConnection) {
  start(oriented_);
  for (int deliveries = 0; deliveries < 2; ++deliveries) {
    ASSERT_EQ(::raise(SIGPIPE), 0);
    struct sigaction action {};
    ASSERT_EQ(::sigaction(SIGPIPE, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, catch_pipe);
  }
}

// --- The empty event ---

TEST_F(EventClient, EmptyEventConnectsWithoutSendingInConnectionlessMode) {
  start(connectionless_);
  post("E");
  network_.up = {alpha_};
  EXPECT_EQ(post_empty(), 0);
  ASSERT_EQ(network_.peers.size(), 2U);  // one without a byte, one for the cached event
  EXPECT_THAT(take(alpha_), ElementsAre(sent("E")));
  EXPECT_EQ(ZEMAD_no_connection, 0);
}

TEST_F(EventClient, EmptyEventOpensTheConnectionAndFlushes) {
  start(oriented_);
  post("E");
  network_.up = {beta_};
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(handle_->current, 1);
  EXPECT_EQ(handle_->sentOnConnection, 2);
  EXPECT_THAT(take(beta_), ElementsAre(sent("E")));
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(handle_->sentOnConnection, 3) << "it counts, and sends nothing";
  EXPECT_EQ(network_.take_bytes(beta_), "");
}

// --- Test mode ---

TEST_F(EventClient, WritesEventsToTheFileOfTestMode) {
  const std::string file = dir_ / "events";
  start("TestMode=YES\nServerLocation=" + file + "\n");
  EXPECT_EQ(post_empty(), 0);
  EXPECT_EQ(post("E"), length_of("E"));
  EXPECT_EQ(test::read_file(file), "\n" + sent("E") + "\n");
  EXPECT_THAT(network_.attempts, IsEmpty());
  handle_.reset();
  handle_.reset(zem_create_handle(nullptr, 0, 0, 2));  // a new handle starts the file anew
  EXPECT_EQ(test::read_file(file), "");
}

TEST_F(EventClient, HasNoHandleWhenTheFileOfTestModeCanNotBeOpened) {
  start("TestMode=YES\n");
  EXPECT_EQ(handle_, nullptr);
  EXPECT_EQ(zem_errno, 48);
}

}  // namespace
}  // namespace zem::agent
