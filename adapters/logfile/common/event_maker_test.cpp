#include "adapters/logfile/common/event_maker.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/keywords.h"
#include "adapters/libzemad/short_road.h"
#include "adapters/libzemad/zem_io.h"
#include "adapters/logfile/common/line_reader.h"
#include "tests/support/allocation_count.h"
#include "tests/support/class_text.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/format_set.h"
#include "tests/support/log_capture.h"
#include "util/heap.h"
#include "util/seam.h"
#include "util/text.h"
#include "util/unique_fd.h"

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
  const format::Captures* const no_captures = nullptr;
  for (const char* message :
       {"a-mail-host-with-a-long-name  x \t y", "nowhere else", "g z", "g zz"}) {
    int index = 0;
    FormatSpec* spec = set.bind(message, index);
    ASSERT_NE(spec, nullptr);
    ASSERT_EQ(queue_event(*spec, index, kHost), 0);
    const std::string records = take_event();
    for (const format::Captures* captures : {set.captures(), no_captures}) {
      ASSERT_EQ(maker.queue(*spec, index, kHost, captures), 0);
      EXPECT_NE(kernel::waiting_event(), nullptr);
      EXPECT_EQ(take_event(), records) << message;
    }
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

/// Under the sanitizer a tenth, which takes as long.
#ifdef __SANITIZE_ADDRESS__
constexpr int kFormats = 10'000;
#else
constexpr int kFormats = 100'000;
#endif

std::string many_formats() {
  std::string text;
  for (int i = 0; i < kFormats; ++i) {
    text += util::format_text(
        "FORMAT E_%d\n%%t %%s prog%d[%%s]: text number %d %%s*\nwhen $1\nhostname $2\npid $3\n"
        "msg $4\norigin DEFAULT\nsource syslog\nkind PRINTF(\"%%s of %%s\", pid, hostname)\nEND\n",
        i, i % 50, i);
  }
  return text;
}

/// A line of FORMAT `i`; none is longer than that of the last one.
std::string line_of(int i) {
  return util::format_text(
      "Nov  5 09:00:00 a-mail-host-with-a-long-name prog%d[4711]: text number %d it's \t %d\n",
      i % 50, i, i);
}

/// The road of a line up to the text of its event.
class ManyFormats : public EventMakerTest {
 protected:
  ManyFormats() : set_(many_formats()), classes_(set_.cds()) {
    kernel::compile_classes();
    ZEMAD_ZemIoInit();
    set_.orderFmts();
    auto index = kFormats;
    for (const FormatSpec* spec : set_.specs()) maker_.prepare(*spec, --index);
    input_ = util::UniqueFd(::memfd_create("lines", MFD_CLOEXEC));
  }
  ~ManyFormats() override { ZEMAD_ZemIoCleanup(); }

  void write(const std::string& line) {
    ASSERT_EQ(::pwrite(input_.get(), line.data(), line.size(), written_),
              static_cast<ssize_t>(line.size()));
    written_ += static_cast<off_t>(line.size());
  }

  /// Reads everything that was written and makes it events; how many.
  int make_events() {
    int made = 0;
    while (reader_.fill(input_.get()) > 0) {
      while (reader_.next() != nullptr) {
        int index = 0;
        const FormatSpec* spec = set_.bind(reader_.whole_line(), index);
        if (spec == nullptr) continue;
        const auto view = maker_.view(*spec, index, kHost, set_.captures());
        if (frame::write_event(view, text_) == kernel::Outcome::kText) ++made;
      }
    }
    return made;
  }

  test::FormatSet set_;
  test::ScopedClasses classes_;
  EventMaker maker_;
  format::LineReader reader_;
  util::UniqueFd input_;
  off_t written_ = 0;
  kernel::EventText text_;
};

TEST_F(ManyFormats, TakeNothingFromTheHeapBetweenALineAndItsText) {
  write(line_of(kFormats - 1));
  ASSERT_EQ(make_events(), 1) << "the longest message makes the buffers grow";
  for (int i = 0; i < kFormats; ++i) write(line_of(i));
  const std::size_t before = test::allocation_count();
  {
    const util::ScopedAllocationFailure no_records(0);
    EXPECT_EQ(make_events(), kFormats);
    EXPECT_EQ(util::allocate(1), nullptr) << "no record was made, either";
  }
  EXPECT_EQ(test::allocation_count(), before);
  const std::string last = std::to_string(kFormats - 1);
  EXPECT_EQ(text_.view(),
            "E_" + last +
                ";when='Nov 5 09:00:00';hostname=a-mail-host-with-a-long-name;pid=4711;"
                "msg='it''s " +
                last +
                "';origin=192.0.2.7;source=syslog;"
                "kind='4711 of a-mail-host-with-a-long-name';END\n");
}

}  // namespace
}  // namespace zem::event
