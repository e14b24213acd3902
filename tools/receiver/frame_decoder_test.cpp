#include "tools/receiver/frame_decoder.h"

#include <array>
#include <string>
#include <vector>

#include "agent/wire_frame.h"
#include "tests/support/table.h"

namespace zem::receiver {
namespace {

using namespace std::string_literals;

constexpr std::size_t kEventBytesMax = 4096;

/// What a client puts on the wire for `text`.
std::string frame_of(const std::string& text) {
  std::array<std::byte, agent::kFrameBytesMax> out{};
  const std::size_t bytes = agent::write_frame(text, {}, out);
  std::string frame(reinterpret_cast<const char*>(out.data()), bytes);
  if (text.size() > agent::kFirstPartBytesMax) frame += text.substr(agent::kFirstPartBytesMax);
  return frame;
}

std::string replaced(std::string frame, std::size_t offset, const std::string& bytes) {
  return frame.replace(offset, bytes.size(), bytes);
}

/// Feeds `stream` in pieces of `step` bytes; what came out, in one line: events by their text, or
/// by their length when they are long, then what the stream ended with.
std::string decode(const std::string& stream, std::size_t step) {
  std::string dump;
  FrameDecoder decoder(kEventBytesMax);
  const auto note = [&](std::string_view event) {
    dump += (event.size() > 100 ? std::to_string(event.size()) : std::string(event)) + "|";
  };
  for (std::size_t at = 0; at < stream.size(); at += step) {
    const Violation violation = decoder.feed(std::string_view(stream).substr(at, step), note);
    if (violation != Violation::kNone) return dump + std::string(text_of(violation));
  }
  return dump + (decoder.is_midway() ? "midway" : "complete");
}

struct StreamCase {
  const char* name;
  std::string stream;
  std::string decoded;
};

class FrameStream : public testing::TestWithParam<StreamCase> {};

TEST_P(FrameStream, IsTheSameHoweverItIsCut) {
  const std::string& stream = GetParam().stream;
  for (std::size_t step = 1; step < 80; ++step) {
    ASSERT_EQ(decode(stream, step), GetParam().decoded) << "in pieces of " << step;
  }
  EXPECT_EQ(decode(stream, stream.size() + 1), GetParam().decoded);
}

const std::string kFrame = frame_of("A;END");

const StreamCase kFrameStreamCases[] = {
    {"Nothing", "", "complete"},
    {"OneEvent", kFrame, "A;END|complete"},
    {"ThreeEvents", kFrame + frame_of("B") + frame_of("C;END\n\x01"),
     "A;END|B|C;END\n\x01|complete"},
    {"WordsOfFreeMeaning", replaced(replaced(kFrame, 8, "word"), 20, "word"), "A;END|complete"},
    {"AroundTheFirstPart",
     frame_of(std::string(1999, 'e')) + frame_of(std::string(2000, 'e')) +
         frame_of(std::string(2001, 'e')) + kFrame,
     "1999|2000|2001|A;END|complete"},
    {"TheLongest", frame_of(std::string(kEventBytesMax, 'e')), "4096|complete"},
    {"HalfAMarker", kFrame + "<STA", "A;END|midway"},
    {"HalfAText", kFrame + kFrame.substr(0, 40), "A;END|midway"},
    {"AnotherProtocol", "GET / HTTP/1.1\r\n\r\n", "no frame begins here"},
    {"BytesBetweenFrames", kFrame + "\n" + kFrame, "A;END|no frame begins here"},
    {"FirstReservedField", replaced(kFrame, 19, "\1"), "a reserved field is not zero"},
    {"SecondReservedField", replaced(kFrame, 24, "\1"), "a reserved field is not zero"},
    {"EmptyEvent", replaced(kFrame, 28, "\0\0\0\0\0\0\0\0"s), "event length out of range"},
    {"TooLong", frame_of(std::string(kEventBytesMax + 1, 'e')), "event length out of range"},
    {"AsLongAsCanBeSaid", replaced(kFrame, 28, "\xFF\xFF\xFF\xFF\0\0\x07\xD0"s),
     "event length out of range"},
    {"PartShorterThanTheEvent", replaced(kFrame, 32, "\0\0\0\4"s),
     "wrong length of the first part"},
    {"PartOfMoreThan2000", replaced(frame_of(std::string(2001, 'e')), 32, "\0\0\x07\xD1"s),
     "wrong length of the first part"}};
INSTANTIATE_TEST_SUITE_P(Streams, FrameStream, testing::ValuesIn(kFrameStreamCases),
                         test::kRowName);

}  // namespace
}  // namespace zem::receiver
