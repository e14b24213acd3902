#include "adapters/libzemad/zem_io.h"

#include <gmock/gmock.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/kernel.h"
#include "agent/agent_comm.h"
#include "agent/cache_settings.h"
#include "agent/trace.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zem::test::LogCapture;
using zem::test::TempDir;

/// Reads a sender configuration of its own; with test mode on, events go to the file `sent()`.
class ZemIo : public testing::Test {
 protected:
  void SetUp() override { configure(""); }
  void TearDown() override {
    drop_slots();
    configure_exactly("");
    ZEMAD_ZemIoCleanup();
  }

  void configure(const std::string& lines) {
    configure_exactly("TestMode=YES\nServerLocation=" + (dir_ / "sent") + "\n" + lines);
  }
  /// No location: what is not held back goes to a cache below the test's directory.
  void configure_without_server(const std::string& lines) {
    configure_exactly("BufEvtPath=" + (dir_ / "cache/events") + "\n" + lines);
  }
  void configure_exactly(const std::string& lines) {
    zem_agent_cleanup();
    default_buffer_config = zem_buffer_config();
    const std::string path = dir_.write("test.conf", lines);
    ASSERT_EQ(zem_agent_init(path.c_str()), 0);
    ZEMAD_ZemIoInit();
  }

  static void set_slots(std::initializer_list<std::pair<const char*, const char*>> slots) {
    drop_slots();
    ZEMAD_MapEntryList = SL_Create();
    for (const auto& [name, value] : slots) {
      SL_InsLast(ZEMAD_MapEntryList,
                 ZEMAD_MakeMapEntry(zem::util::duplicate(name), zem::util::duplicate(value)));
    }
  }
  static void drop_slots() { ZEMAD_KernelSelectCleanup(); }

  [[nodiscard]] std::string sent() const { return zem::test::read_file(dir_ / "sent"); }

  TempDir dir_;
};

TEST_F(ZemIo, WritesClassSlotsAndEnd) {
  set_slots({{"hostname", "hostA"}, {"msg", "disk is full"}, {"empty", ""}, {"a=b", "it's (x)"}});
  ASSERT_EQ(ZEMAD_FormatEvent("Disk Full"), 0);
  EXPECT_STREQ(ZEMAD_EventText(),
               "Disk Full;hostname=hostA;msg='disk is full';empty='';'a=b'='it''s (x)';END\n");
}

TEST_F(ZemIo, WritesAnEventWithoutSlots) {
  EXPECT_EQ(ZEMAD_FormatEvent("Cls"), 0);
  EXPECT_STREQ(ZEMAD_EventText(), "Cls;END\n");
  EXPECT_EQ(ZEMAD_FormatEvent(""), 0);
  EXPECT_STREQ(ZEMAD_EventText(), ";END\n");
}

TEST_F(ZemIo, RefusesWhatHasNoNameOrRecord) {
  LogCapture log(zem::log::kZemIo);
  EXPECT_EQ(ZEMAD_FormatEvent(nullptr), 1);
  set_slots({{"a", "b"}});
  SL_InsLast(ZEMAD_MapEntryList, nullptr);
  EXPECT_EQ(ZEMAD_FormatEvent("Cls"), 4);
  MapEntry nameless{nullptr, nullptr};
  SL_DelAll(ZEMAD_MapEntryList, zem::util::sl_free<ZEMAD_FreeMapEntry>);
  ZEMAD_MapEntryList = SL_Create();
  SL_InsLast(ZEMAD_MapEntryList, &nameless);
  EXPECT_EQ(ZEMAD_FormatEvent("Cls"), 1);
  SL_DelAll(ZEMAD_MapEntryList, nullptr);
  ZEMAD_MapEntryList = nullptr;
  EXPECT_THAT(log.lines(),
              ElementsAre("MAJOR ZEMIO 1 Classname NULL", "LOW ZEMIO 0 Classname NULL",
                          "LOW ZEMIO 0 ZEMAD_MapEntryList failure",
                          "MAJOR ZEMIO 2 ZEMAD_MapEntryList failure",
                          "LOW ZEMIO 0 MapEntry->Name NULL", "MAJOR ZEMIO 2 MapEntry->Name NULL"));
}

struct LimitCase {
  const char* name;
  const char* configuration;
  std::string class_name;
  std::string slot_name;  ///< none when empty
  std::string slot_value;
  int code;
};

class ZemIoLimit : public ZemIo, public testing::WithParamInterface<LimitCase> {};

TEST_P(ZemIoLimit, HoldsAtEveryStep) {
  configure(GetParam().configuration);
  if (!GetParam().slot_name.empty()) {
    set_slots({{GetParam().slot_name.c_str(), GetParam().slot_value.c_str()}});
  }
  LogCapture log(zem::log::kZemIo);
  EXPECT_EQ(ZEMAD_FormatEvent(GetParam().class_name.c_str()), GetParam().code);
  if (GetParam().code == 0) {
    EXPECT_THAT(log.lines(), IsEmpty());
  } else {
    EXPECT_THAT(log.lines(), ElementsAre("MAJOR ZEMIO 1 Z/EM message grows too long",
                                         "LOW ZEMIO 0 Z/EM message grows too long"));
  }
}

const char k20[] = "EventMaxSize=20\n";
const std::string kQuotes(5000, '\'');

const LimitCase kLimitCases[] = {
    {"Fits", k20, "Cls", "a", "b", 0},
    {"NineteenBytes", k20, "Cls", "a", "12345678", 0},
    {"TwentyBytes", k20, "Cls", "a", "123456789", 2},
    {"ClassOf20", k20, "ABCDEFGHIJKLMNOPQRST", "", "", 2},
    {"ClassOf19LeavesNoEnd", k20, "ABCDEFGHIJKLMNOPQRS", "", "", 2},
    {"ClassOf15LeavesNoEnd", k20, "ABCDEFGHIJKLMNO", "", "", 2},
    {"ClassOf14", k20, "ABCDEFGHIJKLMN", "", "", 0},
    {"NameTooLong", k20, "Cls", "a234567890123456", "", 2},
    {"ValueTooLong", k20, "Cls", "a", "12345678901234", 2},
    {"QuotesCount", k20, "Cls", "a", "1234 678", 2},
    {"ManyQuotes", k20, "Cls", "a", kQuotes, 2},
    {"ManyQuotesFitTheDefault", "", "Cls", "a", kQuotes.substr(0, 2000), 0},
    {"Default4096", "", "Cls", "a", std::string(4084, 'v'), 0},
    {"Default4096Reached", "", "Cls", "a", std::string(4085, 'v'), 2},
    {"NoNumber", "EventMaxSize=abc\n", "Cls", "", "", 2},
    {"NoValue", "EventMaxSize=\n", "Cls", "", "", 2},
    {"Negative", "EventMaxSize=-5\n", "Cls", "", "", 2},
    {"HugeFits16MiB", "EventMaxSize=99999999999\n", "Cls", "a", std::string(16777216 - 12, 'v'), 0},
    {"HugeIsCutTo16MiB", "EventMaxSize=99999999999\n", "Cls", "a", std::string(16777216 - 11, 'v'),
     2}};
INSTANTIATE_TEST_SUITE_P(Table, ZemIoLimit, testing::ValuesIn(kLimitCases), zem::test::kRowName);

TEST_F(ZemIo, ReloadTakesTheNewLimitAndCleanUpNone) {
  EXPECT_EQ(ZEMAD_FormatEvent("ABCDEFGHIJKLMNOPQRST"), 0);
  const std::string path = dir_.write("new.conf", k20);
  ASSERT_EQ(zem_agent_init(path.c_str()), 0);
  LogCapture log(zem::log::kZemIo);
  EXPECT_EQ(ZEMAD_ZemIoReload(), 0);
  EXPECT_THAT(
      log.texts(),
      ElementsAre("Reload Z/EM interface ...", "Cleanup Z/EM interface ...",
                  "Z/EM interface cleanup complete", "Initializing Z/EM interface ...",
                  "Z/EM interface initialization complete", "Z/EM interface reload complete"));
  EXPECT_EQ(ZEMAD_FormatEvent("ABCDEFGHIJKLMNOPQRST"), 2);
  ZEMAD_ZemIoCleanup();
  EXPECT_EQ(ZEMAD_FormatEvent("A"), 2);
}

// Sending -----------------------------------------------------------------------------------------

TEST_F(ZemIo, SentEventIsTracedAndCopied) {
  set_slots({{"a", "b c"}});
  LogCapture log(zem::log::kZemIo);
  log.listen(zem::log::kZemIo, {zem::log::kNormal});
  EXPECT_EQ(ZEMAD_SendEvent("Cls"), 0);
  EXPECT_EQ(sent(), "Cls;a='b c';END\n\x01\n");
  EXPECT_THAT(log.texts(), testing::IsSupersetOf({std::string("Sending event to Z/EM ..."),
                                                  std::string("Event sent to Z/EM")}));
  EXPECT_THAT(log.raw(), testing::HasSubstr("\n\nCls;a='b c';END\n\n")) << "without the 0x01";
}

TEST_F(ZemIo, EventThatCanNotBeFormattedIsNotSent) {
  LogCapture log(zem::log::kZemIo);
  EXPECT_EQ(ZEMAD_SendEvent(nullptr), -1);
  EXPECT_THAT(log.texts(), ElementsAre("Sending event to Z/EM ...", "Classname NULL",
                                       "Classname NULL", "No event sent to Z/EM"));
  EXPECT_EQ(sent(), "");
}

struct UnsentCase {
  const char* name;
  const char* configuration;
  const char* cached;
};

class ZemIoUnsent : public ZemIo, public testing::WithParamInterface<UnsentCase> {};

/// Filtered, cached or lost: for the sender they are all one.
TEST_P(ZemIoUnsent, IsReportedOnce) {
  configure_without_server(std::string(GetParam().configuration) +
                           "BufEvtPath=" + (dir_ / "cache/events") + "\n");
  LogCapture log(zem::log::kZemIo);
  EXPECT_EQ(ZEMAD_SendEvent("Cls"), -1);
  EXPECT_THAT(log.lines(), ElementsAre("LOW ZEMIO 0 Sending event to Z/EM ...",
                                       "MAJOR ZEMIO 1 Event could not be sent properly",
                                       "LOW ZEMIO 0 No event sent to Z/EM"));
  EXPECT_EQ(zem::test::read_file(dir_ / "cache/events"), GetParam().cached);
}

const UnsentCase kUnsentCases[] = {{"Filtered", "Filter:Class=Cls\n", ""},
                                   {"Cached", "", "Cls;END\n\x01"},
                                   {"FilteredFromTheCache", "FilterCache:Class=Cls\n", ""},
                                   {"CachingOff", "BufferEvents=NO\n", ""}};
INSTANTIATE_TEST_SUITE_P(Table, ZemIoUnsent, testing::ValuesIn(kUnsentCases), zem::test::kRowName);

TEST_F(ZemIo, ClientSpeaksIntoThisLogWhileAnybodyReadsIt) {
  configure_without_server("");
  EXPECT_FALSE(zem::agent::is_traced());
  LogCapture log(zem::log::kZemIo);
  ZEMAD_ZemIoInit();
  log.clear();
  zem::agent::trace("100% %n torn");
  EXPECT_THAT(log.lines(), ElementsAre("LOW ZEMIO 0 100% %n torn"));
}

TEST_F(ZemIo, HandleStaysUntilTheCleanUp) {
  EXPECT_EQ(ZEMAD_SendEvent("A"), 0);
  ZEMAD_ZemIoReload();
  EXPECT_EQ(ZEMAD_SendEvent("B"), 0);
  EXPECT_EQ(sent(), "A;END\n\x01\nB;END\n\x01\n");
  zem_agent_cleanup();
  zem_agent_cleanup();
  EXPECT_EQ(ZEMAD_SendEvent("C"), 0);
  EXPECT_EQ(sent(), "C;END\n\x01\n") << "a new handle begins a new file";
}

TEST_F(ZemIo, ProcessEndsWhenTheHandleCanNotBeMade) {
  configure_exactly("TestMode=YES\n");
  LogCapture log(zem::log::kZemIo);
  EXPECT_EXIT(zem_agent_send(""), testing::ExitedWithCode(1), "");
  EXPECT_THAT(log.lines(),
              ElementsAre("FATAL ZEMIO 1 Cannot create OBX handle. Please check the .conf file."));
}

}  // namespace
