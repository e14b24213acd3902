#include "adapters/libzemad/event_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace zem::kernel {
namespace {

/// Texts of up to three blocks, and behind each a block that may be read and must not be seen.
TEST(EventText, HoldsWhatWasAppendedHoweverItGrows) {
  std::mt19937 random(1);
  const auto piece = [&](char byte) { return std::string(random() % 50, byte); };
  const std::string unseen(EventText::kBlockBytes, '#');
  EventText text;
  for (int event = 0; event < 100; ++event) {
    text.clear();
    std::string expected;
    for (int i = 0; i < event; ++i) {
      const std::string constant = piece('k') + unseen;
      const auto seen = std::string_view(constant).substr(0, constant.size() - unseen.size());
      const std::string value = piece('v').append("v");
      switch (random() % 3) {
        case 0:
          text.append(seen);
          expected.append(seen);
          break;
        case 1:
          text.append(seen, value);
          expected.append(seen).append(value);
          break;
        default:
          text.append_quoted(std::string(value).append("'"));
          expected.append("'").append(value).append("'''");
          break;
      }
      ASSERT_EQ(text.view(), expected);
    }
  }
}

}  // namespace
}  // namespace zem::kernel
