// Further log files: the daemon's own timer, the poller and the FIFO together.
#include <csignal>
#include <fstream>

#include "tests/scenarios/scenario.h"

namespace zem::test {
namespace {

using testing::ElementsAre;

class Tailing : public Scenario {
 protected:
  Tailing() {
    home_.configure("PollInterval=1");
    home_.configure("LogSources=" + home_ / "source" + ",," + home_ / "late");
    replace("source", "was there before\n");
  }

  void replace(std::string_view name, std::string_view text) const {
    std::ofstream(home_ / name, std::ios::binary) << text;
  }
  void append(std::string_view name, std::string_view text) const {
    std::ofstream(home_ / name, std::ios::app | std::ios::binary) << text;
  }
};

TEST_F(Tailing, PassesOnWhatIsAppendedAndAFileThatComesLate) {
  start();
  append("source", "one\ntwo\nhalf");
  replace("late", "late from its start\n");
  EXPECT_THAT(events_after(3),
              ElementsAre("Line;msg=one;", "Line;msg=two;", "Line;msg='late from its start';"));
  append("source", " a line\n");
  EXPECT_EQ(events_after(4).back(), "Line;msg='half a line';");
}

TEST_F(Tailing, GoesOnAfterAReloadAndEndsWithTheCleanUp) {
  start();
  ASSERT_TRUE(reload());
  append("source", "after the reload\n");
  EXPECT_THAT(events_after(1), ElementsAre("Line;msg='after the reload';"));
  daemon().send(SIGTERM);
  ASSERT_TRUE(is_traced(kCleanedUp));
  EXPECT_TRUE(daemon().is_alive()) << "the alarm is off: its default action would have killed";
}

TEST_F(Tailing, ABusyFifoDoesNotKeepThePollerWaiting) {
  start();
  append("source", "polled\n");
  EXPECT_TRUE(eventually([this] {
    home_.log("busy\n");
    return home_.event_bytes().find("polled") != std::string::npos;
  }));
}

}  // namespace
}  // namespace zem::test
