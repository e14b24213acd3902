#include "adapters/libzemad/short_road.h"

#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/zem_io.h"
#include "tests/support/class_text.h"
#include "tests/support/client_config.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_classes.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace zem::frame {
namespace {

using kernel::EventLayout;
using kernel::EventView;
using kernel::Outcome;
using test::LogCapture;
using test::ScopedClasses;

/// An event that is its own memory.
class Event {
 public:
  Event(std::vector<std::string> names, std::vector<std::string> values)
      : layout_(std::move(names)), values_(std::move(values)) {
    for (const std::string& value : values_) views_.emplace_back(value);
  }

  [[nodiscard]] EventView view() const { return {&layout_, views_}; }
  [[nodiscard]] std::string shown() const {
    std::string text;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      text += layout_.names()[i] + "=\"" + values_[i] + "\" ";
    }
    return text;
  }

 private:
  EventLayout layout_;
  std::vector<std::string> values_;
  std::vector<std::string_view> views_;
};

/// EventMaxSize of the output side, from here on.
void set_limit(const std::string& limit) {
  const test::TempDir dir;
  test::configure_client(dir, "EventMaxSize=" + limit + "\n");
  ZEMAD_ZemIoInit();
}

// What the short road writes ----------------------------------------------------------------------

std::string shown(Outcome outcome, std::string_view text) {
  switch (outcome) {
    case Outcome::kText:
      return std::string(text);
    case Outcome::kDropped:
      return "dropped";
    case Outcome::kUnknown:
      break;
  }
  return "unknown";
}

struct RoadCase {
  const char* name;
  const char* classes;
  const char* result;  ///< the event text without its newline, or what else becomes of the event
};
class ShortRoad : public testing::TestWithParam<RoadCase> {
 protected:
  ShortRoad() { set_limit("100"); }
};

TEST_P(ShortRoad, WritesTheEventText) {
  const ScopedClasses classes(GetParam().classes);
  kernel::compile_classes();
  const Event event({"_event_id", "user", "tty", "empty"}, {"7", "it's me", "pts/3", ""});
  kernel::EventText text;
  const Outcome outcome = write_event(event.view(), text);
  const std::string_view line = text.view();
  EXPECT_EQ(shown(outcome, line.substr(0, line.find('\n'))), GetParam().result);
}

#define ID "1: ATTR(=,\"_event_id\"), VALUE(=,\"7\"); "
const RoadCase kRoadCases[] = {
    {"ValuesNamesAndKeys",
     "CLASS A SELECT " ID R"(2: ATTR(PREFIX,"us"); MAP a = $V2; b = $N2; c = $K2; d = $V1; END)",
     "A;a='it''s me';b=user;c='';d=7;END"},
    {"PrintfWithWidths", "CLASS A SELECT " ID R"(2: ATTR(=,"tty");
        MAP a = PRINTF("%7s|", $V2); b = PRINTF("%-07.3s|", $V2); c = PRINTF("%4s", x); END)",
     "A;a='  pts/3|';b=pts0000|;c='   x';END"},
    {"ClassWithoutSelectIsReportedElsewhere", "CLASS A END CLASS B SELECT " ID "END", "unknown"},
    {"Fetch",
     "CLASS A SELECT " ID "2: ATTR(=,\"tty\"); FETCH 1: SUBSTR($V2, 1, 3); MAP a = $F1; END",
     "unknown"},
    {"MistakenPrintf", "CLASS A SELECT " ID "MAP a = PRINTF(\"%d\", $V1); END", "unknown"},
    {"MistakenPrintfThatIsReplaced", "CLASS A SELECT " ID "MAP a = PRINTF(\"x\", $V1); a = b; END",
     "unknown"},
    {"KeywordsAnswerToTheEmptyName", R"(CLASS A SELECT 1: ATTR(=,""); END)", "unknown"},
    {"AsLongAsTheLimitAllows", "CLASS A SELECT " ID R"(MAP a = PRINTF("%090s", "x"); END)",
     "A;a="
     "00000000000000000000000000000000000000000000000000000000000000000000000000000000000000000x"
     ";END"},
    {"TooLong", "CLASS A SELECT " ID R"(MAP a = PRINTF("%091s", "x"); END)", "unknown"}};
#undef ID
INSTANTIATE_TEST_SUITE_P(Table, ShortRoad, testing::ValuesIn(kRoadCases), test::kRowName);

TEST(ShortRoadLimits, IsClosedWhileAnybodyListens) {
  set_limit("100");
  const ScopedClasses classes("CLASS A SELECT 1: ATTR(=,\"a\"); END");
  kernel::compile_classes();
  const Event event({"a"}, {"x"});
  kernel::EventText text;
  LogCapture log;
  EXPECT_EQ(write_event(event.view(), text), Outcome::kText);
  log.listen(log::kMap, {log::kLow});
  EXPECT_EQ(write_event(event.view(), text), Outcome::kUnknown);
}

TEST(ShortRoadLimits, KnowsTheClassesInForceOnly) {
  set_limit("100");
  const Event event({"a"}, {"x"});
  kernel::EventText text;
  {
    const ScopedClasses classes("CLASS A SELECT 1: ATTR(=,\"a\"); END");
    EXPECT_EQ(write_event(event.view(), text), Outcome::kUnknown) << "nobody has compiled them";
    kernel::compile_classes();
  }
  const ScopedClasses classes("CLASS B SELECT 1: ATTR(=,\"a\"); END");
  EXPECT_EQ(write_event(event.view(), text), Outcome::kUnknown);
}

// The waiting event -------------------------------------------------------------------------------

std::vector<std::string> next_values() {
  std::vector<std::string> values;
  for (const auto* attribute : util::sl_items<Attribute>(ZEMAD_attribute_list)) {
    values.emplace_back(ZEMAD_AttributeEntryValueToString(attribute->Value));
  }
  ZEMAD_DiscardEvent();
  return values;
}

TEST(WaitingEvent, BecomesRecordsForWhoeverAsks) {
  ZEMAD_EventBufferInit();
  const Event first({"a", "b"}, {"1", ""});
  const Event second({"c"}, {"2"});
  ASSERT_EQ(kernel::queue_event(first.view()), 0);
  ASSERT_NE(kernel::waiting_event(), nullptr);
  ASSERT_EQ(kernel::queue_event(second.view()), 0);
  EXPECT_EQ(kernel::waiting_event(), nullptr) << "an event waits as a view only alone";
  ASSERT_EQ(ZEMAD_GetNextEvent(), 0);
  EXPECT_EQ(next_values(), (std::vector<std::string>{"1", ""}));
  ASSERT_EQ(ZEMAD_GetNextEvent(), 0);
  EXPECT_EQ(next_values(), std::vector<std::string>{"2"});
  EXPECT_EQ(ZEMAD_GetNextEvent(), -1);
}

TEST(WaitingEvent, TakesAPlaceInTheQueue) {
  ZEMAD_EventBufferInit();
  const Event event({"a"}, {"1"});
  for (int i = 0; i < kEventQueueMax; ++i) ASSERT_EQ(kernel::queue_event(event.view()), 0);
  EXPECT_EQ(kernel::queue_event(event.view()), -1);
  for (int i = 1; i < kEventQueueMax; ++i) ZEMAD_FreeEventBuffer();
  kernel::drop_waiting_event();
  EXPECT_EQ(ZEMAD_FreeEventBuffer(), 0);
  EXPECT_EQ(ZEMAD_FreeEventBuffer(), -1);
}

// Against the long road ---------------------------------------------------------------------------

/// What became of one event, and what was said about it.
struct Result {
  std::string outcome;
  int error = 0;
  std::string log;

  bool operator==(const Result&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Result& result) {
  return out << result.outcome << " [" << result.error << "]\n" << result.log;
}

/// The log without the times.
std::string take_log(LogCapture& log) {
  constexpr std::size_t kTimeBytes = 24;
  if (zemad_errno == 0) return "";
  std::string text = log.raw();
  log.clear();
  for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
    text.erase(at, kTimeBytes);
  }
  return text;
}

Result long_road(const Event& event, LogCapture& log) {
  zemad_errno = 0;
  kernel::queue_event(event.view());
  ZEMAD_GetNextEvent();
  const char* class_name = ZEMAD_KernelSelect();
  const bool is_sent = class_name != nullptr && ZEMAD_FormatEvent(class_name) == 0;
  Result result{is_sent ? ZEMAD_EventText() : "dropped", zemad_errno, take_log(log)};
  ZEMAD_KernelSelectCleanup();
  ZEMAD_DiscardEvent();
  return result;
}

/// Nothing when the long road is to be taken.
std::optional<Result> short_road(const Event& event, LogCapture& log) {
  zemad_errno = 0;
  kernel::EventText text;
  const Outcome outcome = write_event(event.view(), text);
  Result result{shown(outcome, text.view()), zemad_errno, take_log(log)};
  if (outcome != Outcome::kUnknown) return result;
  EXPECT_EQ(result, (Result{"unknown", 0, ""}))
      << "nothing may be said before the long road is taken";
  return std::nullopt;
}

#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kEvents = 4'000;
#else
constexpr std::size_t kEvents = 25'000;
#endif

std::size_t events_wanted() {
  const char* const text = std::getenv("ZEM_CLASS_EVENTS");
  return text != nullptr ? std::strtoul(text, nullptr, 10) : kEvents;
}

/// ZEM_CLASS_EVENTS is the number of events tried, kEvents when it is not set.
TEST(ShortRoadRandom, LeadsWhereTheLongOneLeads) {
  constexpr std::size_t kEventsPerFile = 25;
  LogCapture log;
  for (int module = log::kUtils; module < log::kModuleCount; ++module) {
    log.listen(static_cast<log::Module>(module), {log::kMinor, log::kMajor, log::kFatal});
  }
  const std::size_t seeds = events_wanted() / kEventsPerFile;
  std::size_t written = 0;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    test::RandomClasses random(seed);
    const std::string file = random.class_file();
    set_limit(std::to_string(random.pick(3) == 0 ? random.pick(80) : 4096));
    std::vector<Event> events;
    for (std::size_t i = 0; i < kEventsPerFile; ++i) {
      const auto names = random.names();
      events.emplace_back(names, random.values(names));
    }
    const ScopedClasses classes(file);
    std::vector<Result> expected;
    for (const Event& event : events) expected.push_back(long_road(event, log));
    kernel::compile_classes();
    for (std::size_t i = 0; i < kEventsPerFile; ++i) {
      const auto place = [&] {
        return "seed " + std::to_string(seed) + ": event " + events[i].shown() + "classes\n" + file;
      };
      ASSERT_EQ(long_road(events[i], log), expected[i]) << "by the index; " << place();
      const auto result = short_road(events[i], log);
      if (!result) continue;
      ASSERT_EQ(*result, expected[i]) << place();
      if (result->outcome != "dropped") ++written;
    }
  }
  EXPECT_GT(written, seeds * kEventsPerFile / 10) << "too few are written to prove anything";
}

}  // namespace
}  // namespace zem::frame
