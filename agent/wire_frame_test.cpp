#include "agent/wire_frame.h"

#include <array>
#include <string>

#include "tests/support/table.h"

namespace zem::agent {
namespace {

struct FrameCase {
  const char* name;
  std::size_t text_bytes;
  std::string lengths;  // offsets 28 to 35
};

class WireFrame : public testing::TestWithParam<FrameCase> {};

TEST_P(WireFrame, HasItsHeaderAndTheFirstPart) {
  const std::string text(GetParam().text_bytes, 'e');
  std::array<std::byte, kFrameBytesMax> out{};
  const std::size_t written = write_frame(text, {0x01020304, 0xA0B0C0D0}, out);
  const std::string frame(reinterpret_cast<const char*>(out.data()), written);
  const std::string expected = std::string("<START>>") + "\x01\x02\x03\x04" + std::string(8, '\0') +
                               "\xA0\xB0\xC0\xD0" + std::string(4, '\0') + GetParam().lengths +
                               text.substr(0, 2000);
  EXPECT_EQ(frame, expected);
}

const FrameCase kWireFrameCases[] = {
    {"TheLimit", 2000, std::string("\0\0\x07\xD0\0\0\x07\xD0", 8)},
    {"JustAbove", 2001, std::string("\0\0\x07\xD1\0\0\x07\xD0", 8)},
    {"ALargeEvent", 0x012345, std::string("\0\x01\x23\x45\0\0\x07\xD0", 8)}};
INSTANTIATE_TEST_SUITE_P(Lengths, WireFrame, testing::ValuesIn(kWireFrameCases), test::kRowName);

}  // namespace
}  // namespace zem::agent
