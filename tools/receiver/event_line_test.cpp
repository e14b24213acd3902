#include "tools/receiver/event_line.h"

#include <chrono>
#include <string>

#include "tests/support/table.h"

namespace zem::receiver {
namespace {

using namespace std::string_literals;

struct LineCase {
  const char* name;
  std::string text;
  std::string as_text;
  std::string as_json;  // behind the members "received" and "peer"
};

class EventLine : public testing::TestWithParam<LineCase> {
 protected:
  [[nodiscard]] static Received received() {
    const std::chrono::system_clock::time_point at{std::chrono::milliseconds{1731664057042}};
    return {GetParam().text, "127.0.0.1:40000", at};
  }
};

TEST_P(EventLine, IsWrittenAsText) {
  std::string line;
  append_text_line(received(), line);
  EXPECT_EQ(line, GetParam().as_text + "\n");
}

TEST_P(EventLine, IsWrittenAsJson) {
  std::string line;
  append_json_line(received(), line);
  EXPECT_EQ(line, R"({"received":"2024-11-15T09:47:37.042Z","peer":"127.0.0.1:40000",)" +
                      GetParam().as_json + "}\n");
}

const LineCase kEventLineCases[] = {
    {"Plain", "A;b='c d';END\n\x01", "A;b='c d';END", R"("class":"A","slots":{"b":"c d"})"},
    {"NoSlots", "A;END\n\x01", "A;END", R"("class":"A","slots":{})"},
    {"RepeatedSlots", "A;b=1;c=2;b=3;END", "A;b=1;c=2;b=3;END",
     R"("class":"A","slots":{"b":["1","3"],"c":"2"})"},
    {"NoEvent", "hello\n\x01", "hello", R"("text":"hello")"},
    {"Utf8", "A;b=\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80;END",
     "A;b=\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80;END",
     "\"class\":\"A\",\"slots\":{\"b\":\"\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80\"}"},
    {"QuoteAndBackslash", R"(A;b=x"y\z;END)", R"(A;b=x"y\\z;END)",
     R"("class":"A","slots":{"b":"x\"y\\z"})"},
    {"ControlCharacters", "A;b='\x1B[2J\n\x7F\0';END"s, R"(A;b='\x1b[2J\x0a\x7f\x00';END)",
     R"("class":"A","slots":{"b":"\u001b[2J\u000a\u007f\u0000"})"},
    {"ControlCharactersOfTwoBytes", "A;b=\xC2\x9B\x31m;END", R"(A;b=\xc2\x9b1m;END)",
     R"("class":"A","slots":{"b":"\u009b1m"})"},
    {"NoUtf8", "A;b=\xFC\x9B;END", R"(A;b=\xfc\x9b;END)",
     "\"class\":\"A\",\"slots\":{\"b\":\"\xEF\xBF\xBD\xEF\xBF\xBD\"},"
     "\"raw\":\"QTtiPfybO0VORA==\""},
    {"CutSequence", "A;b=\xE2\x82;END\n", R"(A;b=\xe2\x82;END)",
     "\"class\":\"A\",\"slots\":{\"b\":\"\xEF\xBF\xBD\xEF\xBF\xBD\"},"
     "\"raw\":\"QTtiPeKCO0VORAo=\""},
    {"OverlongSlashAndSurrogate", "\xC0\xAF\xED\xA0\x80", R"(\xc0\xaf\xed\xa0\x80)",
     "\"text\":\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\","
     "\"raw\":\"wK/toIA=\""}};
INSTANTIATE_TEST_SUITE_P(Lines, EventLine, testing::ValuesIn(kEventLineCases), test::kRowName);

}  // namespace
}  // namespace zem::receiver
