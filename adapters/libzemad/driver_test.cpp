#include "adapters/libzemad/driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/entry.h"
#include "tests/support/fake_driver.h"
#include "tests/support/log_capture.h"
#include "tests/support/pipe.h"
#include "util/signal_notes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zem::test::fake_driver;
using zem::test::LogCapture;
using zem::test::Pipe;
using zem::util::FdSet;
using zem::util::Note;

class Driver : public testing::Test {
 protected:
  void SetUp() override { ZEMAD_EventBufferInit(); }
  void TearDown() override {
    fake_driver().reset();
    ZEMAD_EventBufferInit();
    zem::util::take_note(Note::kReload);
    zem::util::take_note(Note::kCleanup);
  }
};

/// Queues an event with one attribute of this name.
void queue_event(const char* name) {
  AttributeEntry** values = nullptr;
  SL_List* attributes = nullptr;
  ASSERT_EQ(ZEMAD_GetNewEventBuffer(&values, &attributes), 0);
  EXPECT_EQ(values[0], nullptr);
  SL_InsLast(attributes,
             ZEMAD_MakeAttribute(ZEMAD_MakeStringAttributeEntry(name), nullptr, nullptr));
}

std::string current_name() {
  const auto* first = static_cast<Attribute*>(SL_GetPos(ZEMAD_attribute_list, 0));
  return ZEMAD_AttributeEntryValueToString(first->Name);
}

TEST_F(Driver, StartsReloadsAndStopsTheSource) {
  LogCapture log(zem::log::kDriver);
  EXPECT_EQ(ZEMAD_DriverInit(), 0);
  EXPECT_EQ(ZEMAD_DriverReload(), 0);
  fake_driver().on_cleanup = [] { return -1; };
  EXPECT_EQ(ZEMAD_DriverCleanup(), 0);
  EXPECT_THAT(
      log.lines(),
      ElementsAre("LOW DRIVER 0 Initializing driver ...",
                  "LOW DRIVER 0 Driver initialization complete",
                  "LOW DRIVER 0 Reloading driver ...", "LOW DRIVER 0 Driver reload complete",
                  "LOW DRIVER 0 Cleanup driver ...", "MAJOR DRIVER 1 cannot clean specific driver",
                  "LOW DRIVER 0 Driver Cleanup complete"));
}

TEST_F(Driver, EndsTheProcessWhenTheSourceFails) {
  LogCapture log(zem::log::kDriver);
  log.listen(zem::log::kDriver, {zem::log::kFatal});
  fake_driver().on_init = [] { return -1; };
  EXPECT_EXIT(ZEMAD_DriverInit(), testing::ExitedWithCode(1), "");
  fake_driver().on_reload = [] { return -1; };
  EXPECT_EXIT(ZEMAD_DriverReload(), testing::ExitedWithCode(1), "");
  EXPECT_THAT(log.lines(), testing::IsSupersetOf(
                               {std::string("FATAL DRIVER 1 can not initialize specific driver"),
                                std::string("FATAL DRIVER 1 can not reload specific driver")}));
}

TEST_F(Driver, ReleasesTheSourceWhenItsOwnStartFails) {
  LogCapture log(zem::log::kDriver);
  fake_driver().on_cleanup = []() -> int { std::exit(77); };
  const auto start_without_memory = [] {
    const zem::util::ScopedAllocationFailure no_memory(0);
    ZEMAD_DriverInit();
  };
  EXPECT_EXIT(start_without_memory(), testing::ExitedWithCode(77), "");
  EXPECT_THAT(log.lines(), testing::Contains("FATAL DRIVER 1 can not initialize event buffer"));
}

TEST_F(Driver, WaitsForTheReadableOnes) {
  const Pipe silent;
  const Pipe speaking;
  speaking.write("x");
  FdSet set;
  set.set(silent.out.get());
  EXPECT_EQ(ZEMAD_WaitEvent(&set, 0), 0);
  EXPECT_TRUE(set.empty());
  set.set(silent.out.get());
  set.set(speaking.out.get());
  EXPECT_EQ(ZEMAD_WaitEvent(&set, -1), 1);
  EXPECT_TRUE(set.is_set(speaking.out.get()));
  EXPECT_FALSE(set.is_set(silent.out.get()));
}

TEST_F(Driver, DoesNotWaitWhenTheSourcePolls) {
  FdSet set;
  ZEMAD_use_select = 0;
  EXPECT_EQ(ZEMAD_WaitEvent(&set, -1), 1);
  ZEMAD_use_select = 1;
}

/// The note was left before the wait began; only a wait that there is fails.
TEST_F(Driver, PendingReloadOrCleanUpFailsTheWait) {
  const Pipe silent;
  const Pipe speaking;
  speaking.write("x");
  for (const Note note : {Note::kReload, Note::kCleanup}) {
    LogCapture log(zem::log::kDriver);
    FdSet set;
    set.set(silent.out.get());
    zem::util::leave_note(note);
    EXPECT_EQ(ZEMAD_WaitEvent(&set, -1), -1);
    set.set(speaking.out.get());
    EXPECT_EQ(ZEMAD_WaitEvent(&set, -1), 1);
    EXPECT_THAT(log.lines(), ElementsAre("MINOR DRIVER 1 ZEMAD_WaitEvent() : select failed"));
    EXPECT_EQ(zemad_errno, 700001);
    zem::util::take_note(note);
  }
}

TEST_F(Driver, ClosedDescriptorFailsTheWait) {
  Pipe pipe;
  FdSet set;
  set.set(pipe.out.get());
  pipe.out.reset();
  EXPECT_EQ(ZEMAD_WaitEvent(&set, -1), -1);
}

TEST_F(Driver, ReportsASourceThatCanNotRead) {
  LogCapture log(zem::log::kDriver);
  FdSet set;
  fake_driver().on_get_event = [] { return 2; };
  EXPECT_EQ(ZEMAD_GetEvent(&set), 0);
  fake_driver().on_get_event = [] { return -1; };
  EXPECT_EQ(ZEMAD_GetEvent(&set), -1);
  EXPECT_THAT(log.lines(), ElementsAre("MINOR DRIVER 1 ZEMAD_GetEvent() failed"));
}

TEST_F(Driver, EventsComeInTheOrderInWhichTheyWereQueued) {
  EXPECT_EQ(ZEMAD_GetNextEvent(), -1);
  queue_event("first");
  queue_event("second");
  for (const char* name : {"first", "second"}) {
    ASSERT_EQ(ZEMAD_GetNextEvent(), 0);
    EXPECT_EQ(current_name(), name);
    EXPECT_EQ(ZEMAD_DiscardEvent(), 0);
    EXPECT_EQ(ZEMAD_attribute_list, nullptr);
  }
  EXPECT_EQ(ZEMAD_GetNextEvent(), -1);
  EXPECT_EQ(ZEMAD_FreeEventBuffer(), -1);
  EXPECT_EQ(ZEMAD_DiscardEvent(), 0);
}

TEST_F(Driver, RefusesTheHundredAndFirstEventSilently) {
  LogCapture log(zem::log::kDriver);
  for (int i = 0; i < kEventQueueMax; ++i) {
    EXPECT_EQ(ZEMAD_CheckBuffer(), 0);
    queue_event("x");
  }
  EXPECT_EQ(ZEMAD_CheckBuffer(), -1);
  AttributeEntry** values = nullptr;
  SL_List* attributes = nullptr;
  EXPECT_EQ(ZEMAD_GetNewEventBuffer(&values, &attributes), -1);
  EXPECT_THAT(log.lines(), IsEmpty());
  ZEMAD_FreeEventBuffer();
  EXPECT_EQ(ZEMAD_CheckBuffer(), 0);
}

TEST_F(Driver, QueuesNothingWhenMemoryIsShort) {
  const std::array<const char*, 3> texts = {"cannot allocate memory for buffer entry",
                                            "cannot allocate memory for keyword values",
                                            "cannot allocate memory for attribute list"};
  for (std::size_t granted = 0; granted < texts.size(); ++granted) {
    LogCapture log(zem::log::kDriver);
    AttributeEntry** values = nullptr;
    SL_List* attributes = nullptr;
    const zem::util::ScopedAllocationFailure no_memory(static_cast<int>(granted));
    EXPECT_EQ(ZEMAD_GetNewEventBuffer(&values, &attributes), -1);
    EXPECT_THAT(log.lines(), ElementsAre("MINOR DRIVER 1 " + std::string(texts[granted])));
    EXPECT_EQ(ZEMAD_GetNextEvent(), -1);
  }
}

}  // namespace
