#include "agent/port_mapper.h"

#include <string>

#include "tests/support/fake_connector.h"
#include "tests/support/table.h"

namespace zem::agent {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr const char* kMapper = "10.0.0.1:111";
constexpr unsigned kProgram = 100'033'057;

/// The question as it must go over the wire: one record of 56 bytes, call 1, RPC version 2, program
/// 100000 version 2 procedure 3, no credentials; program, version, TCP, port 0.
const std::string kQuestion =
    "\x80\0\0\x38"
    "\0\0\0\1\0\0\0\0\0\0\0\2\0\1\x86\xA0\0\0\0\2\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
    "\x05\xF6\x62\x21\0\0\0\1\0\0\0\6\0\0\0\0"s;

/// Accepted, no verifier, success.
const std::string kGranted = "\x80\0\0\x1C\0\0\0\1\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s;

/// A mapper that has its answer ready before it is asked.
class AnsweringConnector : public test::FakeConnector {
 public:
  std::string answer;
  bool hangs_up = true;

  util::Result<util::UniqueFd> connect(in_addr_t address, in_port_t port,
                                       util::Milliseconds limit) override {
    auto socket = FakeConnector::connect(address, port, limit);
    if (!socket.has_value()) return socket;
    const int far_end = peers.back().socket.get();
    EXPECT_EQ(::send(far_end, answer.data(), answer.size(), 0),
              static_cast<ssize_t>(answer.size()));
    if (hangs_up) ::shutdown(far_end, SHUT_WR);
    return socket;
  }
};

in_port_t ask(Connector& connector) {
  const util::ScopedDouble<Connector> installed(connector);
  return util::current<PortMapper>().port_of(::inet_addr("10.0.0.1"), kProgram, 1);
}

struct AnswerCase {
  const char* name;
  std::string answer;
  in_port_t port;  // host order
};

class PortMapperAnswer : public testing::TestWithParam<AnswerCase> {};

TEST_P(PortMapperAnswer, IsRead) {
  AnsweringConnector connector;
  connector.up = {kMapper};
  connector.answer = GetParam().answer;
  EXPECT_EQ(ntohs(ask(connector)), GetParam().port);
  EXPECT_EQ(connector.take_bytes(kMapper), kQuestion);
}

const AnswerCase kPortMapperAnswerCases[] = {
    {"Port", kGranted + "\0\0\x15\x99"s, 5529},
    {"NotRegistered", kGranted + "\0\0\0\0"s, 0},
    {"NoPortNumber", kGranted + "\0\1\x15\x99"s, 0},
    {"InTwoFragments",
     "\0\0\0\x08\0\0\0\1\0\0\0\1\x80\0\0\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x15\x99"s, 5529},
    {"ToAnotherQuestion",
     "\x80\0\0\x1C\0\0\0\2\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x15\x99"s, 0},
    {"Denied", "\x80\0\0\x14\0\0\0\1\0\0\0\1\0\0\0\1\0\0\0\1\0\0\0\1"s, 0},
    {"ProgramUnavailable", "\x80\0\0\x18\0\0\0\1\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\1"s, 0},
    {"CutShort", kGranted + "\0\0"s, 0},
    {"Nothing", ""s, 0},
    {"AnotherProtocol", "HTTP/1.1 400 Bad Request\r\n\r\n"s, 0}};
INSTANTIATE_TEST_SUITE_P(Answers, PortMapperAnswer, testing::ValuesIn(kPortMapperAnswerCases),
                         test::kRowName);

TEST(PortMapper, HasNoPortWhenTheMapperRefuses) {
  test::FakeConnector connector;
  EXPECT_EQ(ask(connector), 0);
  EXPECT_EQ(connector.attempts, std::vector<std::string>{kMapper});
}

/// Time that passes with every look at it.
class HastyClock : public util::Clock {
 public:
  [[nodiscard]] util::Milliseconds now() const override { return now_ += 3s; }
  bool sleep(util::Milliseconds /*span*/) override { return true; }

 private:
  mutable util::Milliseconds now_{0};
};

TEST(PortMapper, EndsWithItsLimitHoweverSlowlyTheMapperAnswers) {
  AnsweringConnector connector;
  connector.up = {kMapper};
  connector.answer = "\x80\0\0\x1C"s;
  connector.hangs_up = false;
  HastyClock clock;
  const util::ScopedDouble<util::Clock> installed(clock);
  EXPECT_EQ(ask(connector), 0);
}

}  // namespace
}  // namespace zem::agent
