#include "agent/evt_buffer.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include "agent/agent_util.h"
#include "agent/cache_settings.h"
#include "agent/event_filter.h"
#include "agent/trace.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr std::int64_t kLarge = 1'000'000;

/// An event of exactly `bytes` bytes that begins with `name`.
std::string event(const std::string& name, std::size_t bytes = 10) {
  const std::string end = "END\n\x01";
  std::string text = name;
  text.append(";").append(bytes - name.size() - 1 - end.size(), 'x').append(end);
  return text;
}

class Cache : public testing::Test {
 protected:
  Cache() {
    configure(kLarge, 0, 4096);
    zem::agent::set_trace([this](std::string_view line) { traced_ += std::string(line) + "\n"; });
  }
  ~Cache() override {
    zem::agent::set_trace({});
    default_buffer_config = {};
    zem_filters_clear();
  }

  void configure(std::int64_t max_bytes, std::int64_t shrink_bytes, std::int64_t event_bytes) {
    default_buffer_config = {path_, max_bytes, shrink_bytes, 65536, event_bytes, 0, true, true};
  }

  [[nodiscard]] std::string content() const { return zem::test::read_file(path_); }

  int append(const std::string& text) {
    testing::internal::CaptureStderr();
    const int result = zem_buffer_event(text.c_str());
    notice_ = testing::internal::GetCapturedStderr();
    return result;
  }

  zem::test::TempDir home_;
  std::string path_ = home_ / "spool/deep/cache";
  std::string notice_;
  std::string traced_;
};

TEST_F(Cache, AppendsWhatItIsGivenAndMakesItsDirectory) {
  const mode_t mask = ::umask(022);
  EXPECT_EQ(append("A;END\n\x01"), 7);
  EXPECT_EQ(notice_, "Opening cache file: " + path_ + "\n");
  EXPECT_EQ(append("B;END\n\x01"), 7);
  EXPECT_EQ(append(""), 0);
  EXPECT_EQ(notice_, "Opening cache file: " + path_ + "\n") << "for the empty event too";
  EXPECT_EQ(content(),
            "A;END\n\x01"
            "B;END\n\x01");
  struct stat status {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0744U);
  ASSERT_EQ(::stat((home_ / "spool").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0755U);
  ::umask(mask);
}

TEST_F(Cache, AnEventCanNotEndInItsMiddle) {
  EXPECT_EQ(append("A;x=1END\n\x01"
                   "Forged;END\n\x01"),
            22);
  EXPECT_EQ(content(), "A;x=1END\n Forged;END\n\x01");
}

TEST_F(Cache, FiltersEachEventOfAText) {
  std::string spec = "Class=B";
  ASSERT_EQ(zem_add_filter(spec.data(), 1), 0);
  EXPECT_EQ(filter_events("A;END\n\x01"
                          "B;END\n\x01"
                          "C;END\n\x01"),
            "A;END\n\x01"
            "C;END\n\x01");
  EXPECT_EQ(filter_events("B;END\n\x01"), std::nullopt);
  EXPECT_EQ(filter_events("B;END\n"), "B;END\n") << "no event's end: passes whole";
  EXPECT_EQ(append("B;END\n\x01"), 0);
  EXPECT_EQ(notice_, "") << "the file is not even opened";
  EXPECT_FALSE(std::filesystem::exists(path_));
}

struct ShrinkCase {
  const char* name;
  std::int64_t max_bytes, shrink_bytes, event_bytes;
  std::string before;
  std::string text;
  int result;
  std::string after;
};

const std::string kThree = event("a") + event("b") + event("c");
const ShrinkCase kShrinkCases[] = {
    {"FitsExactly", 40, 10, 10, kThree, event("d"), 10, kThree + event("d")},
    {"DropsTheEventAcrossTheShrinkSize", 35, 5, 5, kThree, event("d"), 10,
     event("b") + event("c") + event("d")},
    {"AnEndAtTheShrinkSizeCostsOneMore", 35, 10, 10, kThree, event("d"), 10,
     event("c") + event("d")},
    {"ReadsOnBeyondTheLargestEvent", 205, 5, 5, event("a", 150) + event("b", 50), event("d"), 10,
     event("b", 50) + event("d")},
    {"EmptiesWhenOnlyOneEventIsThere", 205, 5, 5, event("a", 200), event("d"), 10, event("d")},
    {"EmptiesAFileBelowTheShrinkSize", 35, 64, 10, kThree, event("d"), 10, event("d")},
    {"CanNotShrinkAFileOfTheShrinkSize", 35, 30, 10, kThree, event("d"), -2, kThree},
    {"MayExceedTheLimitByOneEvent", 5, 5, 5, kThree, event("d", 40), 40,
     event("b") + event("c") + event("d", 40)},
    {"CutsATornTailFirst", 30, 5, 5, kThree + "torn", event("d"), 10,
     event("b") + event("c") + event("d")},
    {"CutsATextThatIsNothingButTorn", 30, 5, 5, "torn", event("d"), 10, event("d")}};

class CacheFileLimit : public Cache, public testing::WithParamInterface<ShrinkCase> {};
TEST_P(CacheFileLimit, DropsOldestWholeEventsWhenFull) {
  const ShrinkCase& tested = GetParam();
  ASSERT_EQ(MkDirR((home_ / "spool/deep").c_str()), 0);
  home_.write("spool/deep/cache", tested.before);
  configure(tested.max_bytes, tested.shrink_bytes, tested.event_bytes);
  EXPECT_EQ(append(tested.text), tested.result);
  EXPECT_EQ(content(), tested.after);
}
INSTANTIATE_TEST_SUITE_P(Table, CacheFileLimit, testing::ValuesIn(kShrinkCases),
                         zem::test::kRowName);

TEST_F(Cache, TellsOfATornTail) {
  append("A;END\n\x01");
  home_.write("spool/deep/cache", "A;END\n\x01half");
  append("B;END\n\x01");
  EXPECT_EQ(traced_, "cache file " + path_ + ": cut off 4 bytes of an event without its end\n");
}

TEST_F(Cache, FaultsOfThePlaceFailAndPass) {
  const std::string ev = "A;END\n\x01";
  home_.write("file", "");
  EXPECT_EQ(MkDirR((home_ / "file/below").c_str()), -1);
  const std::string places[] = {"file/cache", "directory", "fifo", "link"};
  ASSERT_EQ(::mkdir((home_ / "directory").c_str(), 0700), 0);
  ASSERT_EQ(::mkfifo((home_ / "fifo").c_str(), 0600), 0);
  ASSERT_EQ(::symlink((home_ / "file").c_str(), (home_ / "link").c_str()), 0);
  for (const std::string& place : places) {
    path_ = home_ / place;
    default_buffer_config.path = path_;
    EXPECT_EQ(append(ev), -1) << place;
    EXPECT_EQ(zem_event_buffer_size(nullptr, path_.c_str(), nullptr), -1) << place;
  }
  EXPECT_EQ(std::count(traced_.begin(), traced_.end(), '\n'), 3) << traced_;
  EXPECT_EQ(zem::test::read_file(home_ / "file"), "") << "links are not followed";
  ASSERT_EQ(::unlink((home_ / "link").c_str()), 0);
  EXPECT_EQ(append(ev), 7) << "works again when the fault is gone";
}

/// Files can not grow beyond `bytes` for a scope, as on a full disk.
class ScopedFileLimit {
 public:
  explicit ScopedFileLimit(rlim_t bytes) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &previous_);
    const rlimit limit{bytes, previous_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ScopedFileLimit(const ScopedFileLimit&) = delete;
  ScopedFileLimit& operator=(const ScopedFileLimit&) = delete;
  ~ScopedFileLimit() {
    ::setrlimit(RLIMIT_FSIZE, &previous_);
    ::signal(SIGXFSZ, handler_);
  }

 private:
  sighandler_t handler_;
  rlimit previous_{};
};

TEST_F(Cache, AnEventThatDoesNotFitOnTheDiskLeavesNoPiece) {
  append(event("a", 30));
  {
    const ScopedFileLimit full(40);
    // No capture here: the test's own files could not grow either.
    EXPECT_EQ(zem_buffer_event(event("b", 30).c_str()), -1);
  }
  EXPECT_EQ(content(), event("a", 30));
  EXPECT_NE(traced_.find("File too large; the event is not cached"), std::string::npos) << traced_;
  EXPECT_EQ(append(event("c", 30)), 30);
  EXPECT_EQ(content(), event("a", 30) + event("c", 30));
}

TEST_F(Cache, SizeHandsTheDescriptorBack) {
  append("A;END\n\x01");
  int fd = -1;
  EXPECT_EQ(zem_event_buffer_size(nullptr, nullptr, &fd), 7);
  EXPECT_NE(::fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
  ::close(fd);
  EXPECT_EQ(zem_event_buffer_size(nullptr, (home_ / "none").c_str(), nullptr), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST(TruncateAtTop, LeavesTheRest) {
  const zem::test::TempDir home;
  for (const auto& [size, cut] : {std::pair{100U, 0U},
                                  {5000U, 1U},
                                  {5000U, 3000U},
                                  {300'000U, 70'001U},
                                  {4090U, 100U},
                                  {100U, 5000U}}) {
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) text.append(std::to_string(i)).append("\x01");
    const std::string path = home.write("x", text);
    EXPECT_EQ(trunc_at_top(path.c_str(), cut), 0);
    EXPECT_EQ(zem::test::read_file(path), cut < text.size() ? text.substr(cut) : "")
        << cut << " of " << size;
  }
  EXPECT_EQ(trunc_at_top((home / "none").c_str(), 1), -1);
}

struct SettingsCase {
  const char* name;
  const char* text;
  const char* dump;  ///< max shrink block event rate on
};
class CacheSettings : public testing::TestWithParam<SettingsCase> {};
TEST_P(CacheSettings, AreReadFromTheConfiguration) {
  const zem::test::TempDir home;
  ASSERT_EQ(common_agent_init(home.write("c", GetParam().text).c_str()), 0);
  default_buffer_config = {};
  const zem_buffer_config& config = zem::agent::buffer_config();
  std::string dump;
  for (const std::int64_t number :
       {config.max_bytes, config.shrink_bytes, config.block_bytes, config.event_bytes,
        std::int64_t{config.flush_rate}, std::int64_t{config.is_caching_on}}) {
    dump.append(std::to_string(number)).append(" ");
  }
  EXPECT_EQ(dump, GetParam().dump);

  ASSERT_EQ(common_agent_init(home.write("c", "BufEvtPath=/other\nBufferEvents=NO\n").c_str()), 0);
  EXPECT_NE(zem::agent::buffer_config().path, "/other") << "read once per process";
  default_buffer_config = {};
  common_agent_init(home.write("c", "").c_str());
}
const SettingsCase kCacheSettingsCases[] = {
    {"Defaults", "", "65536 8192 65536 4096 0 1 "},
    {"Numbers",
     "BufEvtMaxSize=2KB\nBufEvtShrinkSize=1\nEventMaxSize=100\nBufEvtRdBlkLen=7\n"
     "BufferFlushRate=10\nBufferEvents=nope\n",
     "2048 1024 7 100 10 0 "},
    {"NeedALeadingDigit",
     "BufEvtMaxSize= 2\nBufEvtShrinkSize=-1\nEventMaxSize=abc\nBufEvtRdBlkLen=\n",
     "65536 8192 65536 4096 0 1 "},
    {"ShrinkIsAnEventAtLeast", "BufEvtShrinkSize=0\nEventMaxSize=9000\n",
     "65536 9000 65536 9000 0 1 "},
    {"Odd", "BufEvtRdBlkLen=0\nBufferFlushRate=65537\nBufEvtMaxSize=0\n", "0 8192 65536 4096 1 1 "},
    {"Huge",
     "BufEvtMaxSize=99999999999999999999\nBufEvtShrinkSize=9223372036854775807\n"
     "EventMaxSize=9223372036854775807\nBufEvtRdBlkLen=99999999999\n",
     "2305843009213692928 2305843009213693951 16777216 2305843009213693951 0 1 "}};
INSTANTIATE_TEST_SUITE_P(Table, CacheSettings, testing::ValuesIn(kCacheSettingsCases),
                         zem::test::kRowName);

}  // namespace
