#include "adapters/logfile/common/LogPoll.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/alarm.h"
#include "tests/support/pipe.h"
#include "tests/support/report_capture.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "util/unique_fd.h"

namespace {

constexpr long kIntervalS = 3600;

class LogPollTest : public testing::Test {
 protected:
  ~LogPollTest() override {
    ::alarm(0);
    zem::test::forget_all_notes();
  }

  [[nodiscard]] std::string path(std::string_view name) const { return dir_ / name; }
  void replace(std::string_view name, std::string_view text) const { dir_.write(name, text); }
  void append(std::string_view name, std::string_view text) const {
    std::ofstream(path(name), std::ios::app | std::ios::binary) << text;
  }

  /// A poller over files of the directory.
  std::unique_ptr<LogPoll> follow(std::vector<std::string> names, int fd) {
    std::vector<char*> sources;
    sources.reserve(names.size() + 1);
    for (std::string& name : names) sources.push_back((name = path(name)).data());
    sources.push_back(nullptr);
    return std::make_unique<LogPoll>(sources.data(), kIntervalS, fd);
  }
  std::unique_ptr<LogPoll> follow(std::vector<std::string> names) {
    return follow(std::move(names), pipe_.in.get());
  }

  void fill_pipe(std::size_t bytes) const { pipe_.write(std::string(bytes, '.')); }

  /// What the pipe holds, without its filling.
  [[nodiscard]] std::string drain() const {
    std::array<char, 65536> bytes;
    const ssize_t count = ::read(pipe_.out.get(), bytes.data(), bytes.size());
    std::string text(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    text.erase(0, text.find_first_not_of('.'));
    return text;
  }

  zem::test::TempDir dir_;
  zem::test::ReportCapture reports_;
  zem::test::Pipe pipe_{O_NONBLOCK};
};

struct TailCase {
  const char* name;
  std::optional<std::string> before;  ///< content at the start; nothing: the file is missing
  /// "+text" appends, "=text" replaces the file, "-" removes it, "." polls.
  std::vector<std::string> steps;
  std::string passed_on;  ///< what each poll wrote, with a "|" behind it
};

class LogPollTail : public LogPollTest, public testing::WithParamInterface<TailCase> {};

TEST_P(LogPollTail, PassesOn) {
  if (GetParam().before) replace("source", *GetParam().before);
  const auto poller = follow({"source"});
  std::string passed_on;
  for (const std::string& step : GetParam().steps) {
    const std::string text = step.substr(1);
    if (step[0] == '+') append("source", text);
    if (step[0] == '=') replace("source", text);
    if (step[0] == '-') std::filesystem::remove(path("source"));
    if (step[0] != '.') continue;
    poller->poll();
    passed_on += drain() + "|";
  }
  EXPECT_EQ(passed_on, GetParam().passed_on);
  EXPECT_EQ(reports_.text(), "");
}

std::string line_of(std::size_t characters) { return std::string(characters, 'x') + "\n"; }

const TailCase kTailCases[] = {
    {"NothingOfWhatWasThereBefore", "old\n", {"."}, "|"},
    {"WhatIsAppended", "old\n", {"+new\n", ".", "+one\ntwo\n", ".", "."}, "new\n|one\ntwo\n||"},
    {"ALineOnlyWhenItIsComplete", "", {"+one\nha", ".", "+lf", ".", "+\n", "."}, "one\n||half\n|"},
    {"ALineThatBeganBeforeTheStart", "beg", {"+in\n", "."}, "in\n|"},
    {"ATruncatedFileFromItsStart", "old old\n", {"=new\n", "."}, "new\n|"},
    {"ALateFileFromItsFirstByte", std::nullopt, {".", "=first\n", "."}, "|first\n|"},
    {"ARotatedFileFromItsStart", "old\n", {"-", ".", "=x\n", "."}, "|x\n|"},
    {"ALongerReplacementFromTheOldOffset", "12345\n", {"=abcdefgh\n", "."}, "gh\n|"},
    {"AnyByteButNewlineAsItIs",
     "",
     {std::string("+a\0\xff\r\n", 6), "."},
     std::string("a\0\xff\r\n|", 6)},
    {"ALineOf511Whole", "", {"+" + line_of(511), "."}, line_of(511) + "|"},
    {"OnlyTheNewlineOf512", "", {"+" + line_of(512), "."}, "\n|"},
    {"TheRestBehind512", "", {"+" + line_of(600) + "next\n", "."}, line_of(88) + "next\n|"},
    {"TheRestBehind1024", "", {"+" + line_of(1100), "."}, line_of(76) + "|"},
};
INSTANTIATE_TEST_SUITE_P(LogPoll, LogPollTail, testing::ValuesIn(kTailCases), zem::test::kRowName);

TEST_F(LogPollTest, StopsWhenThePipeIsFullAndComesBackSoon) {
  const auto poller = follow({"source"});
  append("source", "one\n0123456789\n");
  fill_pipe(4096 - 10);
  poller->poll();
  EXPECT_EQ(reports_.text(), "W Buffer length = 6, pipe space = 6\n");
  EXPECT_EQ(::alarm(0), 10U);
  EXPECT_EQ(drain(), "one\n");

  poller->poll();
  EXPECT_EQ(drain(), "0123456789\n");
  EXPECT_EQ(::alarm(0), kIntervalS);
}

TEST_F(LogPollTest, AnExactFillCountsAsFullAndLaterSourcesWait) {
  const auto poller = follow({"source", "later"});
  append("source", "0123456789\n");
  append("later", "later\n");
  fill_pipe(4096 - 11);
  poller->poll();
  EXPECT_EQ(drain(), "0123456789\n");
  EXPECT_EQ(reports_.text(), "W Buffer length = 0, pipe space = 0\n");
  poller->poll();
  EXPECT_EQ(drain(), "later\n");
}

TEST_F(LogPollTest, PassesOnAtMostOnePipeFullPerPass) {
  const auto poller = follow({"source"});
  std::string all;
  for (int i = 0; i < 1000; ++i) all += std::to_string(i) + "\n";
  append("source", all);
  std::string passed_on;
  for (int passes = 0; passes < 2; ++passes) {
    poller->poll();
    const std::string part = drain();
    EXPECT_LE(part.size(), 4096U);
    passed_on += part;
  }
  EXPECT_EQ(passed_on, all) << "nothing lost, doubled or out of order";
}

TEST_F(LogPollTest, ARefusedLineIsReadAgainByTheNextPass) {
  zem::util::UniqueFd refusing(::dup(pipe_.out.get()));  // the wrong end: every write fails
  const auto poller = follow({"source", "second"}, refusing.get());
  append("source", "one\ntwo\n");
  append("second", "three\n");
  poller->poll();
  EXPECT_EQ(reports_.text(),
            "E error writing to fifo, errno=9\nE error writing to fifo, errno=9\n");
  ::dup2(pipe_.in.get(), refusing.get());
  poller->poll();
  EXPECT_EQ(drain(), "one\ntwo\nthree\n");
}

TEST_F(LogPollTest, CopiesNothingWhenThePipeCanNotBeAsked) {
  const zem::util::UniqueFd no_pipe(::open("/dev/null", O_WRONLY));
  const auto poller = follow({"source"}, no_pipe.get());
  append("source", "one\n");
  poller->poll();
  EXPECT_EQ(reports_.text(),
            "E cannot fstat the output pipe, errno=" + std::to_string(ENOTTY) + "\n");
}

TEST_F(LogPollTest, SkipsASourceThatCanNotBeOpenedAnyMore) {
  const auto poller = follow({"source", "next"});
  std::filesystem::create_symlink("source", path("source"));
  append("next", "next\n");
  poller->poll();
  EXPECT_EQ(drain(), "next\n");
  EXPECT_EQ(reports_.text(),
            "E cannot open " + path("source") + ", errno=" + std::to_string(ELOOP) + "\n");
}

TEST_F(LogPollTest, ASourceThatCanNotBeOpenedAtTheStartIsFatal) {
  std::filesystem::create_symlink("source", path("source"));
  EXPECT_EXIT(follow({"source"}), testing::ExitedWithCode(1), "");
}

TEST_F(LogPollTest, TheTimerOnlyLeavesANote) {
  const auto poller = follow({"source"});
  append("source", "one\n");
  ::raise(SIGALRM);
  EXPECT_EQ(drain(), "");
  LogPoll::pollWhenDue();
  EXPECT_EQ(drain(), "one\n");
  append("source", "two\n");
  LogPoll::pollWhenDue();
  EXPECT_EQ(drain(), "") << "one pass for one alarm";
}

TEST_F(LogPollTest, OpensTheTimersSignalThatTheParentHadBlocked) {
  sigset_t alarm_only;
  sigemptyset(&alarm_only);
  sigaddset(&alarm_only, SIGALRM);
  ::sigprocmask(SIG_BLOCK, &alarm_only, nullptr);
  const auto poller = follow({"source"});
  ::raise(SIGALRM);
  EXPECT_TRUE(zem::util::is_noted(zem::util::Note::kPoll));
}

TEST_F(LogPollTest, EndsWithTheAlarmOffAndTheOldActionBack) {
  ::signal(SIGALRM, SIG_IGN);
  follow({"source"}).reset();
  EXPECT_EQ(::alarm(0), 0U);
  EXPECT_EQ(::signal(SIGALRM, SIG_DFL), SIG_IGN);
  zem::util::leave_note(zem::util::Note::kPoll);
  LogPoll::pollWhenDue();  // nobody is there to poll any more
}

}  // namespace
