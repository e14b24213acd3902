#include "adapters/logfile/common/event_maker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/keywords.h"
#include "adapters/libzemad/short_road.h"
#include "adapters/libzemad/zem_io.h"
#include "tests/support/allocation_count.h"
#include "tests/support/class_text.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/format_set.h"
#include "tests/support/log_capture.h"
#include "util/heap.h"
#include "util/seam.h"
#include "util/text.h"

namespace zem::event {
namespace {

constexpr format::LocalHost kHost = {"hostA", "192.0.2.1"};

class EventMakerTest : public testing::Test {
 protected:
  EventMakerTest() : scope_(resolver_) {
    resolver_.hosts = {{"a-mail-host-with-a-long-name", "192.0.2.7"}};
    ZEMAD_EventBufferInit();
  }

  test::FakeResolver resolver_;
  util::ScopedDouble<util::Resolver> scope_;
};

/// The oldest event of the queue, as records.
std::string take_event() {
  std::string text;
  ZEMAD_GetNextEvent();
  for (const auto* slot : util::sl_items<Attribute>(ZEMAD_attribute_list)) {
    for (const AttributeEntry* entry : {slot->Name, slot->Key, slot->Value}) {
      text.append(ZEMAD_AttributeEntryValueToString(entry)).append("|");
    }
  }
  text.append(ZEMAD_AttributeEntryValueToString(ZEMAD_GetAttributeByKeyword(0)->Value));
  ZEMAD_DiscardEvent();
  return text;
}

TEST_F(EventMakerTest, ViewsStandForTheRecordsOfTheSameMatch) {
  ASSERT_TRUE(kernel::make_keyword_table());
  test::FormatSet set(
      "FORMAT F\n%s %s*\norigin DEFAULT\nhostname $1\nrest $2\nconst x\nother DEFAULT\nEND\n"
      "FORMAT G\ng %s\nhostname DEFAULT\norigin DEFAULT\n-word $1\nEND\n");
  set.orderFmts();
  EventMaker maker;
  for (const char* message :
       {"a-mail-host-with-a-long-name  x \t y", "nowhere else", "g z", "g zz"}) {
    int index = 0;
    FormatSpec* spec = set.bind(message, index);
    ASSERT_NE(spec, nullptr);
    ASSERT_EQ(queue_event(*spec, index, kHost), 0);
    const std::string records = take_event();
    ASSERT_EQ(maker.queue(*spec, index, kHost), 0);
    EXPECT_NE(kernel::waiting_event(), nullptr);
    EXPECT_EQ(take_event(), records) << message;
  }
}

TEST_F(EventMakerTest, QueuesRecordsWhileAnybodyListens) {
  test::FormatSet set("FORMAT F\n%s\na $1\nEND\n");
  int index = 0;
  FormatSpec* spec = set.bind("x", index);
  test::LogCapture log;
  log.listen(log::kDriver, {log::kLow});
  EventMaker maker;
  EXPECT_EQ(maker.queue(*spec, index, kHost), 0);
  EXPECT_EQ(kernel::waiting_event(), nullptr);
  EXPECT_EQ(ZEMAD_FreeEventBuffer(), 0);
}

// The steady state --------------------------------------------------------------------------------

std::string formats(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += util::format_text(
        "FORMAT E_%d\n%%t %%s prog%d[%%s]: text number %d %%s*\nwhen $1\nhostname $2\npid $3\n"
        "msg $4\norigin DEFAULT\nsource syslog\nkind PRINTF(\"%%s of %%s\", pid, hostname)\nEND\n",
        i, i % 50, i);
  }
  return text;
}

TEST_F(EventMakerTest, TakesNothingFromTheHeapBetweenALineAndItsText) {
  constexpr int kFormats = 2000;
  test::FormatSet set(formats(kFormats));
  const test::ScopedClasses classes(set.cds());
  kernel::compile_classes();
  ZEMAD_ZemIoInit();
  set.orderFmts();
  std::vector<std::string> lines;
  for (int i = 0; i < kFormats; ++i) {
    lines.push_back(util::format_text(
        "Nov  5 09:00:00 a-mail-host-with-a-long-name prog%d[4711]: text number %d it's \t %d\n",
        i % 50, i, i));
  }
  EventMaker maker;
  std::string text;
  std::size_t bytes = 0;
  const auto write_all = [&] {
    for (const std::string& line : lines) {
      int index = 0;
      const FormatSpec* spec = set.bind(line.c_str(), index);
      ASSERT_EQ(frame::write_event(maker.view(*spec, index, kHost), text), kernel::Outcome::kText);
      bytes += text.size();
    }
  };
  write_all();
  const std::size_t before = test::allocation_count();
  {
    const util::ScopedAllocationFailure no_records(0);
    write_all();
    EXPECT_EQ(util::allocate(1), nullptr) << "no record was made, either";
  }
  EXPECT_EQ(test::allocation_count(), before);
  EXPECT_EQ(text,
            "E_1999;when='Nov 5 09:00:00';hostname=a-mail-host-with-a-long-name;pid=4711;"
            "msg='it''s 1999';origin=192.0.2.7;source=syslog;"
            "kind='4711 of a-mail-host-with-a-long-name';END\n");
  EXPECT_GT(bytes, 2UL * kFormats * text.size() - 10UL * kFormats);
  ZEMAD_ZemIoCleanup();
}

}  // namespace
}  // namespace zem::event
