#include "tools/receiver/event_text.h"

#include <string>

#include "tests/support/table.h"

namespace zem::receiver {
namespace {

/// "Class name=[value] ..." or "no event".
std::string dump(std::string_view text) {
  const std::optional<Event> event = parse_event(text);
  if (!event.has_value()) return "no event";
  std::string line = event->class_name;
  for (const Slot& slot : event->slots) line += " " + slot.name + "=[" + slot.value + "]";
  return line;
}

struct TextCase {
  const char* name;
  const char* text;
  const char* parsed;
};

class EventText : public testing::TestWithParam<TextCase> {};

TEST_P(EventText, IsParsed) { EXPECT_EQ(dump(GetParam().text), GetParam().parsed); }

INSTANTIATE_TEST_SUITE_P(
    Texts, EventText,
    testing::Values(
        TextCase{"Plain", "Disk_Full;hostname=hostA;msg='disk is full';END\n\x01",
                 "Disk_Full hostname=[hostA] msg=[disk is full]"},
        TextCase{"WithoutTerminator", "A;b=c;END", "A b=[c]"}, TextCase{"NoSlots", "A;END\n", "A"},
        TextCase{"ClassWithoutAName", ";END\n", ""},
        TextCase{"DoubledQuotes", "A;b='it''s (x)';c='''';END", "A b=[it's (x)] c=[']"},
        TextCase{"EmptyValues", "A;b='';c=;END", "A b=[] c=[]"},
        TextCase{"DelimitersInQuotes", "A;'b=;'='c=;';d=e;END", "A b=;=[c=;] d=[e]"},
        TextCase{"NewlineInQuotes", "A;b='x\ny;END\n';END\n\x01", "A b=[x\ny;END\n]"},
        TextCase{"QuoteInsideAToken", "A;b=it's;END", "A b=[it's]"},
        TextCase{"SameNameTwice", "A;b=1;b=2;END", "A b=[1] b=[2]"},
        TextCase{"ASlotNamedEnd", "A;END=1;END", "A END=[1]"},
        TextCase{"NoClass", "text", "no event"}, TextCase{"NoEnd", "A;b=c;", "no event"},
        TextCase{"NameAlone", "A;b;END", "no event"},
        TextCase{"QuoteLeftOpen", "A;b='c;END", "no event"},
        TextCase{"TextBehindAQuote", "A;b='c'd;END", "no event"},
        TextCase{"TextBehindTheEnd", "A;END;b=c", "no event"}, TextCase{"Empty", "", "no event"}),
    test::kRowName);

}  // namespace
}  // namespace zem::receiver
