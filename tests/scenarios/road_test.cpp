// The road of a line: FIFO, format, class, event text.
#include "tests/scenarios/scenario.h"

namespace zem::test {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

/// The manual's example, and its classes as the format engine writes them.
const std::string kMail = ZEM_SOURCE_DIR "/tests/golden/format/good.mail";
constexpr const char* kMailHead = "Nov 15 09:47:37 hostA sendmail[123]: ";

class Road : public Scenario {
 protected:
  void use(std::string_view formats, std::string_view classes) {
    home_.rewrite(home_.fmt_path(), formats);
    home_.rewrite(home_.cds_path(), classes);
  }
};

TEST_F(Road, OneEventByteByByte) {
  use(read_file(kMail + ".fmt"), read_file(kMail + ".cds"));
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
  use(read_file(kMail + ".fmt"), read_file(kMail + ".cds"));
  start();
  home_.log(kMailHead + "anything\n"s);
  EXPECT_TRUE(is_traced("Default action is <*DISCARD*>"));
  home_.log(kMailHead + "refused connect from 10.0.0.9\n"s);
  EXPECT_EQ(events_after(1).size(), 1U);
}

TEST_F(Road, LinesAreCutIntoPiecesOf511Bytes) {
  start();
  home_.log(std::string(600, 'x') + "\n" + std::string(510, 'y') + "\n");
  EXPECT_THAT(events_after(3), ElementsAre("Line;msg=" + std::string(511, 'x') + ";",
                                           "Line;msg=" + std::string(89, 'x') + ";",
                                           "Line;msg=" + std::string(510, 'y') + ";"));
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

}  // namespace
}  // namespace zem::test
