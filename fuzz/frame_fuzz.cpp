// Foreign bytes on a connection of the receiving server: the stream in one piece and cut into
// pieces gives the same events, and every event can be written in both forms. The first byte says
// how long the pieces are.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/receiver/event_line.h"
#include "tools/receiver/frame_decoder.h"
#include "util/expect.h"

namespace {

using zem::receiver::FrameDecoder;
using zem::receiver::Violation;

constexpr std::size_t kEventBytesMax = 4096;

struct Outcome {
  std::vector<std::string> events;
  Violation violation = Violation::kNone;
  bool is_midway = false;

  bool operator==(const Outcome&) const = default;
};

Outcome decode(std::string_view stream, std::size_t step) {
  Outcome outcome;
  FrameDecoder decoder(kEventBytesMax);
  while (!stream.empty() && outcome.violation == Violation::kNone) {
    outcome.violation = decoder.feed(stream.substr(0, step), [&](std::string_view event) {
      outcome.events.emplace_back(event);
    });
    stream.remove_prefix(std::min(step, stream.size()));
  }
  outcome.is_midway = outcome.violation == Violation::kNone && decoder.is_midway();
  return outcome;
}

bool is_one_safe_line(std::string_view line) {
  if (line.find('\n') != line.size() - 1) return false;
  line.remove_suffix(1);
  for (const char byte : line) {
    if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F) return false;
  }
  return true;
}

void write(const std::string& event) {
  const zem::receiver::Received received{event, "127.0.0.1:40000",
                                         std::chrono::system_clock::time_point{}};
  std::string text;
  std::string json;
  append_text_line(received, text);
  append_json_line(received, json);
  zem::util::expect(is_one_safe_line(text) && is_one_safe_line(json),
                    "an event is one line without control characters");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view stream(reinterpret_cast<const char*>(data) + 1, size - 1);
  const Outcome whole = decode(stream, stream.size() + 1);
  zem::util::expect(whole == decode(stream, data[0] + std::size_t{1}),
                    "a stream means the same however it is cut");
  for (const std::string& event : whole.events) write(event);
  // Frames are rare among random bytes; the text behind them is not.
  write(std::string(stream));
  return 0;
}
