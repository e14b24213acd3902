#include "bench/road/event_counter.h"

#include <string>

#include "agent/wire_frame.h"
#include "tests/support/table.h"

namespace zem::bench {
namespace {

std::string frame(std::string_view text) {
  std::string bytes(agent::kFrameHeaderBytes + std::min(text.size(), agent::kFirstPartBytesMax), 0);
  agent::write_frame(text, {}, std::as_writable_bytes(std::span(bytes)));
  if (text.size() > agent::kFirstPartBytesMax) bytes += text.substr(agent::kFirstPartBytesMax);
  return bytes;
}

/// What the counter says of `stream` when it comes in pieces of `piece` bytes.
std::uint64_t count_in_pieces(EventForm form, std::string_view stream, std::size_t piece) {
  EventCounter counter(form);
  std::uint64_t events = 0;
  for (std::size_t at = 0; at < stream.size(); at += piece) {
    events += counter.count(stream.substr(at, piece));
  }
  return events;
}

struct CounterCase {
  const char* name;
  EventForm form;
  std::string stream;
  std::uint64_t events;
};

const CounterCase kCounterCases[] = {
    {"FrameByItsLengthNotByItsBytes", EventForm::kFrames,
     frame(std::string(0x10A, '\n')) + frame("a;END\n\x01"), 2},
    {"FrameWithARestBehindIt", EventForm::kFrames,
     frame(std::string(2001, 'x')) + frame(std::string(5000, 'y')) + frame("z"), 3},
    {"HalfAFrame", EventForm::kFrames, frame("one") + frame("two").substr(0, 38), 1},
    {"EmptyFrame", EventForm::kFrames, frame("") + frame("x"), 2},
    {"Lines", EventForm::kLines, "one\ntwo\nthree", 2},
    {"Marks", EventForm::kMarks, "\na;END\n\x01\nb;END\n\x01\n", 2}};

class EventCounterForm : public testing::TestWithParam<CounterCase> {};

TEST_P(EventCounterForm, CountsWhateverThePieces) {
  const CounterCase& c = GetParam();
  for (const std::size_t piece : {1U, 7U, 36U, 37U, 100'000U}) {
    EXPECT_EQ(count_in_pieces(c.form, c.stream, piece), c.events) << "pieces of " << piece;
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, EventCounterForm, testing::ValuesIn(kCounterCases), test::kRowName);

}  // namespace
}  // namespace zem::bench
