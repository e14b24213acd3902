// The road of a line: FIFO, format, class, event text.
#include <arpa/inet.h>
#include <unistd.h>

#include "tests/scenarios/scenario.h"
#include "util/resolver.h"

namespace zem::test {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

/// The class definition as the format engine writes it.
constexpr const char* kMailFormats =
    "/* messages of the mail daemon */\n"
    "FORMAT Mail_Base\n"
    "%t %s %s[%s]: %s*\n"
    "date $1\n"
    "hostname $2\n"
    "sub_source $3\n"
    "pid $4\n"
    "msg $5\n"
    "severity DEFAULT\n"
    "END\n"
    "\n"
    "// a more particular message\n"
    "FORMAT Mail_Refused FOLLOWS Mail_Base\n"
    "%t %s %s[%s]: refused connect from %s\n"
    "origin $5\n"
    "msg PRINTF(\"refused connect from %s\", origin)\n"
    "severity WARNING\n"
    "END\n";
constexpr const char* kMailClasses =
    "CLASS Mail_Base\n"
    "  SELECT\n"
    "    1: ATTR(=,\"_event_id\"), VALUE(=,\"0\");\n"
    "    2: ATTR(=,\"severity\");\n"
    "  MAP\n"
    "    severity = $V2;\n"
    "END\n"
    "CLASS Mail_Refused\n"
    "  SELECT\n"
    "    1: ATTR(=,\"_event_id\"), VALUE(=,\"1\");\n"
    "    2: ATTR(=,\"date\");\n"
    "    3: ATTR(=,\"hostname\");\n"
    "    4: ATTR(=,\"sub_source\");\n"
    "    5: ATTR(=,\"pid\");\n"
    "    6: ATTR(=,\"origin\");\n"
    "  MAP\n"
    "    date = $V2;\n"
    "    hostname = $V3;\n"
    "    sub_source = $V4;\n"
    "    pid = $V5;\n"
    "    msg = PRINTF(\"refused connect from %s\", $V6);\n"
    "    severity = \"WARNING\";\n"
    "    origin = $V6;\n"
    "END\n";
constexpr const char* kMailHead = "Nov 15 09:47:37 hostA sendmail[123]: ";

class Road : public Scenario {
 protected:
  void use(std::string_view formats, std::string_view classes) {
    home_.rewrite(home_.fmt_path(), formats);
    home_.rewrite(home_.cds_path(), classes);
  }
};

TEST_F(Road, OneEventByteByByte) {
  use(kMailFormats, kMailClasses);
  start();
  home_.log(kMailHead + "refused connect from 10.0.0.9\n"s);
  const std::string event =
      "Mail_Refused;date='Nov 15 09:47:37';hostname=hostA;sub_source=sendmail;pid=123;"
      "msg='refused connect from 10.0.0.9';severity=WARNING;origin=10.0.0.9;END\n";
  ASSERT_EQ(event.size(), 152U);
  const std::string expected = "\n" + event + "\x01\n";
  EXPECT_TRUE(eventually([&] { return home_.event_bytes().size() >= expected.size(); }));
  EXPECT_EQ(home_.event_bytes(), expected) << "an empty event comes first";
}

TEST_F(Road, ADefaultSlotThatTheSourceDoesNotFillMakesNoEvent) {
  use(kMailFormats, kMailClasses);
  start();
  home_.log(kMailHead + "anything\n"s);
  EXPECT_TRUE(is_traced("Default action is <*DISCARD*>"));
  home_.log(kMailHead + "refused connect from 10.0.0.9\n"s);
  EXPECT_EQ(events_after(1).size(), 1U);
}

TEST_F(Road, TheLastFormatThatMatchesWinsAndNamesItsPositionInTheFile) {
  use("FORMAT A\n%s*\nmsg $1\nEND\n"
      "FORMAT B\nlogin %s*\nmsg $1\nEND\n"
      "FORMAT C\nlogin root %s*\nmsg $1\nEND\n",
      "CLASS Any\n  SELECT\n    1: ATTR(=,\"_event_id\");\n    2: ATTR(=,\"msg\");\n"
      "  MAP\n    id = $V1;\n    msg = $V2;\nEND\n");
  start();
  home_.log("login root here\nlogin joe\nlogout\n");
  EXPECT_THAT(events_after(3),
              ElementsAre("Any;id=2;msg=here;", "Any;id=1;msg=joe;", "Any;id=0;msg=logout;"));
}

TEST_F(Road, AFormatThatFollowsAnotherHasItsSlots) {
  use("FORMAT Base\n%s %s\nwho $1\nwhat $2\nEND\n"
      "FORMAT Child FOLLOWS Base\n%s does %s\nextra $2\nwhat $2\nEND\n",
      "CLASS Child\n  SELECT\n    1: ATTR(=,\"_event_id\"), VALUE(=,\"1\");\n"
      "    2: ATTR(=,\"who\");\n    3: ATTR(=,\"what\");\n    4: ATTR(=,\"extra\");\n"
      "  MAP\n    who = $V2;\n    what = $V3;\n    extra = $V4;\nEND\n");
  start();
  home_.log("joe does nothing\n");
  EXPECT_THAT(events_after(1), ElementsAre("Child;who=joe;what=nothing;extra=nothing;"));
}

TEST_F(Road, DefaultSlotsNameTheLocalHost) {
  use("FORMAT Local\n%s*\nhostname DEFAULT\norigin DEFAULT\nEND\n",
      "CLASS Local\n  SELECT\n    1: ATTR(=,\"hostname\");\n    2: ATTR(=,\"origin\");\n"
      "  MAP\n    hostname = $V1;\n    origin = $V2;\nEND\n");
  char host[64] = "";
  ASSERT_EQ(::gethostname(host, sizeof host), 0);
  const auto address = util::current<util::Resolver>().address_of(host);
  start();
  home_.log("x\n");
  EXPECT_THAT(events_after(1), ElementsAre("Local;hostname="s + host + ";origin=" +
                                           (address ? ::inet_ntoa(*address) : "???") + ";"));
}

TEST_F(Road, LinesAreCutIntoPiecesOf511Bytes) {
  start();
  home_.log(std::string(600, 'x') + "\n" + std::string(510, 'y') + "\n");
  EXPECT_THAT(events_after(3), ElementsAre("Line;msg=" + std::string(511, 'x') + ";",
                                           "Line;msg=" + std::string(89, 'x') + ";",
                                           "Line;msg=" + std::string(510, 'y') + ";"));
}

TEST_F(Road, ALineMayArriveInParts) {
  start();
  home_.log("first\nse");
  EXPECT_THAT(events_after(1), ElementsAre("Line;msg=first;"));
  home_.log("cond");
  home_.log("\nthird\n");
  EXPECT_THAT(events_after(3),
              ElementsAre("Line;msg=first;", "Line;msg=second;", "Line;msg=third;"));
}

TEST_F(Road, ALineWithoutFormatGoesToTheUnmatchedLog) {
  use("FORMAT Known\nknown %s\nmsg $1\nEND\n",
      "CLASS Known\n  SELECT\n    1: ATTR(=,\"msg\");\n  MAP\n    msg = $V1;\nEND\n");
  start();
  home_.log("unknown\n"s + "\0hidden\n"s + std::string(511, 'x') + "\nknown one\n");
  EXPECT_THAT(events_after(1), ElementsAre("Known;msg=one;"));
  EXPECT_EQ(home_.unmatched(), "unknown\n\n" + std::string(511, 'x') + "\n\n")
      << "each ends in one newline; the newline behind 511 bytes is a message of its own";
  EXPECT_EQ(count_of("MINOR: DRIVER , err 01", home_.trace()), 4);
  EXPECT_EQ(count_of("ZEMAD_GetEvent() failed", home_.trace()), 4);
  EXPECT_EQ(count_of("GetEvent error", home_.trace()), 4);
}

TEST_F(Road, TheFrameNeverWaitsItself) {
  start();
  EXPECT_EQ(count_of(kWaiting, home_.trace()), 1)
      << "the lock file is always ready: the source is asked before there is any message";
  EXPECT_EQ(home_.event_bytes(), "\n");
}

std::string event_of_number(int number) {
  return std::string("Line;msg=").append(std::to_string(number)).append(";");
}

TEST_F(Road, AFloodIsTakenWithoutLossDoubleOrDisorder) {
  constexpr int kLines = 3000;
  constexpr int kBatch = 1000;
  std::vector<std::string> expected;
  home_.rewrite(home_.err_path(), "# whoever traces sees one event after the other\n");
  launch(usual_start());
  ASSERT_TRUE(eventually([&] { return home_.event_bytes() == "\n"; }));
  while (expected.size() < kLines) {
    std::string batch;
    for (int i = 0; i < kBatch; ++i) {
      const int number = static_cast<int>(expected.size());
      batch.append(std::to_string(number)).append("\n");
      expected.push_back(event_of_number(number));
    }
    home_.log(batch);
    ASSERT_TRUE(
        eventually([&] { return home_.event_bytes().ends_with(expected.back() + "END\n\x01\n"); }));
  }
  EXPECT_EQ(home_.events(), expected);
}

struct ClassCase {
  const char* name;
  const char* classes;
  const char* event;   ///< of the line "word"; "": none
  const char* traced;  ///< what the log tells
};

class ClassFile : public Road, public testing::WithParamInterface<ClassCase> {};

TEST_P(ClassFile, Decides) {
  home_.rewrite(home_.cds_path(), GetParam().classes);
  start();
  home_.log("word\n");
  EXPECT_TRUE(is_traced(kWaiting, 2));
  EXPECT_THAT(home_.trace(), HasSubstr(GetParam().traced));
  const std::vector<std::string> events = home_.events();
  EXPECT_EQ(events.empty() ? "" : events.front(), GetParam().event);
}

const ClassCase kClasses[] = {
    {"ACommentDoesNotEndAWord", "CLASS abc#x\ndef\n  SELECT\n    1: ATTR(=,\"msg\");\nEND\n",
     "abcdef;", "Found action is <abcdef>"},
    {"TheFirstClassThatHoldsWins",
     "CLASS One\n  SELECT\n    1: ATTR(=,\"other\");\nEND\n"
     "CLASS Two\n  SELECT\n    1: ATTR(=,\"msg\");\nEND\n"
     "CLASS Three\n  SELECT\n    1: ATTR(=,\"msg\");\nEND\n",
     "Two;", "Found action is <Two>"},
    {"DiscardDropsTheEvent", "CLASS *DISCARD*\n  SELECT\n    1: ATTR(=,\"msg\");\nEND\n", "", ""},
    {"OrderingOnAKeyFails", "CLASS A\n  SELECT\n    1: ATTR(=,\"msg\"), KEY(>,\"a\");\nEND\n", "",
     "Operation on key not supported."},
    {"OrderingHoldsForAnyString",
     "CLASS A\n  SELECT\n    1: ATTR(=,\"msg\"), VALUE(>,\"5\");\nEND\n", "A;", ""},
};
INSTANTIATE_TEST_SUITE_P(Road, ClassFile, testing::ValuesIn(kClasses),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace zem::test
