#include "agent/agent_util.h"

#include <sys/resource.h>

#include <cerrno>
#include <string>
#include <utility>

#include "agent/event_filter.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "util/heap.h"

namespace {

class SenderConfiguration : public testing::Test {
 protected:
  ~SenderConfiguration() override {
    load("");
    testing::internal::GetCapturedStdout();
  }

  /// Reads `text` as the configuration; what was printed is caught until `printed()`.
  int load(std::string_view text) {
    if (!is_capturing_) testing::internal::CaptureStdout();
    is_capturing_ = true;
    return common_agent_init(home_.write("x.conf", text).c_str());
  }

  std::string printed() {
    is_capturing_ = false;
    return testing::internal::GetCapturedStdout();
  }

  static std::string value(const char* key) {
    const char* const found = zem_agent_getenv(key);
    return found == nullptr ? "none" : found;
  }

  zem::test::TempDir home_;

 private:
  bool is_capturing_ = false;
};

TEST_F(SenderConfiguration, KeepsTextAsItIsWritten) {
  const std::string long_value(600, 'v');
  load("# A=comment\n\nA=1\nA=2\nServerPort =5529\nB= x = y \r\nEmpty=\nPreFilter:a=b\nLong=" +
       long_value + "\n#" + std::string(510, 'c') + "\nLast=unseen");
  EXPECT_EQ(value("A"), "1") << "the first of a key wins";
  EXPECT_EQ(value("ServerPort"), "none") << "the blank belongs to the key";
  EXPECT_EQ(value("ServerPort "), "5529");
  EXPECT_EQ(value("B"), " x = y \r");
  EXPECT_EQ(value("Empty"), "");
  EXPECT_EQ(value("Long"), long_value);
  EXPECT_EQ(value("Last"), "none") << "a last line without newline is never seen";
  EXPECT_EQ(value("PreFilter:a=b"), "a=b") << "stored whole, and looked up by nobody";
  EXPECT_EQ(SL_NbrElm(default_agent_info.environment), 7);
  EXPECT_EQ(printed(), "");
}

TEST_F(SenderConfiguration, ReportsLinesOneAboveTheirPlace) {
  EXPECT_EQ(load("nonsense\n# fine\nFilter:Class\nA=1\n filter\n" + std::string(1300, 'x') +
                 "\nFilterCache:Class=Foo;sev\nFilter:\n"),
            0);
  const std::string text = "syntax error in configuration file, line ";
  EXPECT_EQ(printed(), text + "2 ignored\n" + text + "4 ignored\n" + text + "6 ignored\n" + text +
                           "7 ignored\n" + text + "8 ignored\n");
  EXPECT_EQ(value("A"), "1");
}

TEST_F(SenderConfiguration, FilesItCanNotRead) {
  load("A=1\nFilter:Class=Foo\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(common_agent_init((home_ / "missing").c_str()), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "stat failed: No such file or directory\n");
  EXPECT_EQ(value("A"), "none") << "the store is empty after a failure";
  EXPECT_EQ(SL_NbrElm(zem_event_filters), 0);
  EXPECT_EQ(common_agent_init(home_.path().c_str()), 3);
  EXPECT_EQ(printed(), home_.path().string() + ": Not a regular file\n");
}

TEST_F(SenderConfiguration, AFileItCanNotOpen) {
  load("A=1\n");
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);  // the file can still be examined
  const int result = common_agent_init((home_ / "x.conf").c_str());
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(result, 4);
  EXPECT_EQ(value("A"), "none");
  EXPECT_EQ(printed(), home_ / "x.conf" + ": Can not fopen\n");
}

TEST_F(SenderConfiguration, RandomBytesAreLinesLikeAnyOther) {
  EXPECT_EQ(load(std::string_view("\0A=1\n=x\n\xff\xfe=\x80\n\n", 14)), 0);
  EXPECT_EQ(value("\xff\xfe"), "\x80");
}

TEST_F(SenderConfiguration, FilterModeBeginsWithInInAnyCase) {
  for (const auto& [text, is_in] :
       {std::pair{"In", true}, {"inside", true}, {"OUT", false}, {"I", false}, {"", false}}) {
    load(std::string("FilterMode=") + text + "\n");
    EXPECT_EQ(zem::agent::is_filter_mode_in(), is_in) << text;
  }
}

/// "a|b" of many texts.
template <class Texts>
std::string joined(Texts first, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text.append(i == 0 ? "" : "|").append(first[i]);
  return text;
}

TEST_F(SenderConfiguration, SplitsAValueAtItsCommas) {
  for (const auto& [value, fields] : {std::pair{"5529,,5530,", "5529|5530"},
                                      {"a, b", "a| b"},
                                      {"1,2,3,4,5,6,7,8,9", "1|2|3|4|5|6|7|8"},
                                      {",,,", ""}}) {
    load(std::string("K=") + value + "\n");
    int count = -1;
    char** const found = zem_split_entries("K", &count);
    EXPECT_EQ(joined(found, count), fields);
    zem_split_entries("absent", &count);
    EXPECT_EQ(count, 0);
  }
}

struct HandleCase {
  const char* name;
  const char* configured;
  const char* location;
  const char* fallback;
  const char* locations;
  int retry_s;
};
class HandleConfiguration : public SenderConfiguration,
                            public testing::WithParamInterface<HandleCase> {};
TEST_P(HandleConfiguration, LocationsAndRetryInterval) {
  load(GetParam().configured);
  zem_handle handle;
  handle.location_count = 3;
  handle.unfiltered = true;
  EXPECT_EQ(common_agent_handle_init(&handle, GetParam().location, GetParam().fallback), 0);
  EXPECT_EQ(joined(handle.locations.begin(), handle.location_count), GetParam().locations);
  EXPECT_EQ(common_agent_get_retry(&handle), GetParam().retry_s);
  EXPECT_FALSE(handle.unfiltered || handle.test_mode);
}
const HandleCase kHandleCases[] = {
    {"Nothing", "", nullptr, nullptr, "", 120},
    {"Fallback", "RetryInterval=\n", nullptr, "f", "f", 120},
    {"FallbackUnused", "ServerLocation=a\n", nullptr, "f", "a", 120},
    {"ExplicitFirst", "ServerLocation=a,b\nRetryInterval=7s\n", "x", "f", "x|a|b", 7},
    {"EightInAll", "ServerLocation=1,2,3,4,5,6,7,8\nRetryInterval=-1\n", "x", nullptr,
     "x|1|2|3|4|5|6|7", -1},
    {"HugeInterval", "RetryInterval=99999999999\nTestMode=Y\n", nullptr, nullptr, "", 2147483647}};
INSTANTIATE_TEST_SUITE_P(Settings, HandleConfiguration, testing::ValuesIn(kHandleCases),
                         zem::test::kRowName);

TEST_F(SenderConfiguration, TestModeOpensLocationZeroEmptied) {
  const std::string file = home_.write("events", "old");
  load("TestMode=yes please\nServerLocation=" + file + ",other\n");
  zem_handle handle;
  ASSERT_EQ(common_agent_handle_init(&handle, nullptr, nullptr), 0);
  EXPECT_TRUE(handle.test_mode);
  std::fclose(handle.test_stream);
  EXPECT_EQ(zem::test::read_file(file), "");

  load("TestMode=YES\n");
  zem_handle without_location;
  EXPECT_EQ(common_agent_handle_init(&without_location, nullptr, nullptr), ENOENT);
}

using SenderConfigurationDeathTest = SenderConfiguration;
TEST_F(SenderConfigurationDeathTest, MemoryExhaustionIsFatal) {
  const std::string path = home_.write("x.conf", "Filter:Class=Foo\nA=1\n");
  for (int successes = 0; successes < 12; ++successes) {
    EXPECT_EXIT(
        {
          const zem::util::ScopedAllocationFailure failure(successes);
          common_agent_init(path.c_str());
        },
        testing::ExitedWithCode(1), "^Memory allocation failure, exiting...\n$")
        << successes;
  }
}

}  // namespace
