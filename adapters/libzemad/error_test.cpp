#include "adapters/libzemad/error.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/agent_settings.h"
#include "tests/support/file_time.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"
#include "util/text.h"

namespace zem::log {
namespace {

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::MatchesRegex;

constexpr const char* kModules[] = {"ERROR", "UTILS", "PARSER", "KERNEL",  "SELECT",
                                    "FETCH", "MAP",   "DRIVER", "DRVSPEC", "ZEMIO"};
constexpr const char* kSeverities[] = {"MINOR", "MAJOR", "FATAL", "LOW", "NORMAL", "VERBOSE"};

/// "KERNEL LOW /a; MAP MINOR /b; ": every pair that is on.
std::string dump_destinations() {
  std::string result;
  for (int module = 0; module < kModuleCount; ++module) {
    for (int severity = 0; severity < kSeverityCount; ++severity) {
      const char* path = ZEMAD_module_debugfile[module][severity];
      if (*path == '\0') continue;
      result += util::format_text("%s %s %s; ", kModules[module], kSeverities[severity], path);
    }
  }
  return result;
}

/// The table of destinations and the last error are as before when the test ends.
class ErrorFile : public testing::Test {
 protected:
  std::string write(std::string_view content) {
    std::string path = dir_.write("x.err", content);
    settings_.set("AdapterErrorFile=" + path + "\n");
    return path;
  }

  test::TempDir dir_;
  test::AgentSettings settings_{""};
  test::LogCapture unchanged_afterwards_;
};

// The description file ----------------------------------------------------------------------------

struct FileCase {
  const char* name;
  std::string content;
  std::string destinations;
};

class ErrorFileLines : public ErrorFile, public testing::WithParamInterface<FileCase> {};

TEST_P(ErrorFileLines, SwitchPairsOn) {
  write(GetParam().content);
  ZEMAD_ErrorInit();
  EXPECT_EQ(dump_destinations(), GetParam().destinations);
}

const FileCase kFileCases[] = {
    {"Comments", "# nothing\n#\n", ""},
    {"EveryOtherLineIsAPair", "KERNEL LOW /a\n#\nZEMIO VERBOSE /b\n",
     "KERNEL LOW /a; ZEMIO VERBOSE /b; "},
    {"WordsMayBeSpread", " \tKERNEL\t  LOW  /a  more\n", "KERNEL LOW /a; "},
    {"TheLastLineOfAPairHolds", "KERNEL LOW /a\nKERNEL LOW /b\n", "KERNEL LOW /b; "},
    {"NullIsOff", "KERNEL LOW /dev/null\n", ""},
    {"NullDoesNotSwitchOff", "KERNEL LOW /a\nKERNEL LOW /dev/null\n", "KERNEL LOW /a; "},
    {"UnknownModuleIsIgnored", "kernel LOW /a\n", ""},
    {"UnknownSeverityCarriesOverToTheNextModule", "PARSER BOGUS /a\n", "KERNEL NORMAL /a; "},
    {"CarriedOverNullIsOff", "PARSER BOGUS /dev/null\n", ""},
    {"TheLastModuleHasNoneToCarryOverTo", "ZEMIO BOGUS /a\n", ""},
    {"LongestPath", "MAP LOW /" + std::string(126, 'x') + "\n",
     "MAP LOW /" + std::string(126, 'x') + "; "},
    {"TooLongAPathIsOff", "MAP LOW /" + std::string(127, 'x') + "\n", ""},
    {"CarriedOverLongPathIsOff", "MAP BOGUS /" + std::string(127, 'x') + "\n", ""},
    {"WithoutNewlineTheLastLetterGoes", "MAP LOW /abc", "MAP LOW /ab; "},
    {"LongLinesAreReadInPieces", "#" + std::string(510, 'x') + "MAP LOW /a\n", "MAP LOW /a; "}};
INSTANTIATE_TEST_SUITE_P(ErrorFile, ErrorFileLines, testing::ValuesIn(kFileCases), test::kRowName);

struct BadLineCase {
  const char* name;
  std::string content;
  const char* report;
};

class ErrorFileBadLines : public ErrorFile, public testing::WithParamInterface<BadLineCase> {};

TEST_P(ErrorFileBadLines, EndTheProcess) {
  write(GetParam().content);
  EXPECT_EXIT(ZEMAD_ErrorInit(), ExitedWithCode(2), GetParam().report);
}

const BadLineCase kBadLineCases[] = {
    {"Blank", "# x\n\n", "^zemad EH : error 2 invalid error config line: \n$"},
    {"TwoWords", "KERNEL LOW\n", "^zemad EH : error 2 invalid error config line: KERNEL LOW\n$"},
    {"UnknownModuleOfTwoWords", "BOGUS LOW\n", "error 2 invalid error config line: BOGUS LOW\n$"},
    {"OnlyTheCutLetter", "MAP LOW x", "error 2 invalid error config line: MAP LOW \n$"},
    {"NulByte", std::string("\0MAP LOW /a\n", 12), "error 2 invalid error config line: \n$"},
    {"RestOfALongComment", "#" + std::string(600, 'x') + "\n", "error 2 invalid.*: x{90}\n$"}};
INSTANTIATE_TEST_SUITE_P(ErrorFile, ErrorFileBadLines, testing::ValuesIn(kBadLineCases),
                         test::kRowName);

TEST_F(ErrorFile, MissingEndsTheProcess) {
  for (const std::string path : {"/nowhere/x.err", ""}) {
    settings_.set("AdapterErrorFile=" + path + "\n");
    EXPECT_EXIT(ZEMAD_ErrorInit(), ExitedWithCode(4),
                "^zemad EH : error 4 Init: Stat failed on error file <" + path + ">\n$");
  }
}

TEST_F(ErrorFile, ThatCanNotBeOpenedEndsTheProcess) {
  const std::string path = dir_ / "socket";
  ASSERT_EQ(::mknod(path.c_str(), S_IFSOCK | 0600, 0), 0);
  settings_.set("AdapterErrorFile=" + path + "\n");
  EXPECT_EXIT(ZEMAD_ErrorInit(), ExitedWithCode(1),
              "^zemad EH : error 1 can't open description file : .*/socket\n\n$");
}

TEST_F(ErrorFile, NoMemoryEndsTheProcess) {
  write("#\n");
  EXPECT_EXIT(
      {
        const util::ScopedAllocationFailure failure(0);
        ZEMAD_ErrorInit();
      },
      ExitedWithCode(4), "^zemad EH : error 4 Malloc failed\n$");
}

TEST_F(ErrorFile, IsReadAgainOnlyWhenItsSecondsOrItsPathChange) {
  const std::string path = write("MAP LOW /a\n");
  test::set_modified(path, 1000, 0);
  ZEMAD_ErrorInit();

  write("MAP LOW /b\n");
  test::set_modified(path, 1000, 999);
  ZEMAD_ErrorReload();
  EXPECT_EQ(dump_destinations(), "MAP LOW /a; ");

  test::set_modified(path, 1001);
  ZEMAD_ErrorReload();
  EXPECT_EQ(dump_destinations(), "MAP LOW /b; ");

  const std::string other = dir_.write("y.err", "MAP LOW /c\n");
  test::set_modified(other, 1001);
  settings_.set("AdapterErrorFile=" + other + "\n");
  ZEMAD_ErrorReload();
  EXPECT_EQ(dump_destinations(), "MAP LOW /c; ");
}

TEST_F(ErrorFile, TracesItsLife) {
  const std::string log = dir_ / "log";
  const std::string path = write("ERROR LOW " + log + "\n");
  ZEMAD_ErrorInit();
  ZEMAD_ErrorReload();
  ZEMAD_ErrorCleanup();
  EXPECT_THAT(test::read_file(log),
              MatchesRegex(".* LOW: ERROR  , err 00, .*Init: Error file is <" + path +
                           ">\n.*: Reload Error Module ...\n.*: Cleanup Error Module ...\n"));
}

// Messages ----------------------------------------------------------------------------------------

struct HeaderCase {
  const char* name;
  int module;
  const char* file;
  int line;
  int severity;
  int number;
  const char* text;
  const char* line_after_the_time;
};

class ErrorHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(ErrorHeader, Names) {
  test::LogCapture log;
  const HeaderCase& tested = GetParam();
  log.listen(static_cast<Module>(tested.module), {static_cast<Severity>(tested.severity)});
  ZEMAD_Error(tested.module, tested.file, tested.line, tested.severity, tested.number, tested.text);
  const std::string raw = log.raw();
  ASSERT_GT(raw.size(), 24U);
  EXPECT_THAT(raw.substr(0, 24),
              MatchesRegex("[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} [0-9]{4}"));
  EXPECT_EQ(raw.substr(24), tested.line_after_the_time);
}

const HeaderCase kHeaderCases[] = {
    {"Progress", kKernel, "kernel", 42, kLow, 0, "Starting",
     "     LOW: KERNEL , err 00,           kernel line 0042: Starting\n"},
    {"Dump", kDrvSpec, "x", 12345, kVerbose, 123, "t",
     " VERBOSE: DRVSPEC, err 123,                x line 12345: t\n"},
    {"LongSourceNameByItsEnd", kMap, "a/very/long/path/of/a/source/file/abc.cpp", 1, kMinor, 7, "t",
     "   MINOR: MAP    , err 07, rce/file/abc.cpp line 0001: t\n"},
    {"NoSource", kMap, nullptr, 0, kMinor, 7, "t",
     "   MINOR: MAP    , err -01,                  line 0000: t\n"},
    {"NewlineAtTheEndStays", kMap, "m", 1, kLow, 0, "loop...\n",
     "     LOW: MAP    , err 00,                m line 0001: loop...\n\n"},
    {"TextIsNoFormat", kMap, "m", 1, kLow, 0, "%n%s 100%",
     "     LOW: MAP    , err 00,                m line 0001: %n%s 100%\n"}};
INSTANTIATE_TEST_SUITE_P(Error, ErrorHeader, testing::ValuesIn(kHeaderCases), test::kRowName);

TEST(Error, RemembersTheLastErrorAndNoTrace) {
  test::LogCapture log;
  EXPECT_EQ(ZEMAD_Error(kSelect, "s", 1, kMinor, 12, "t"), 400012);
  EXPECT_EQ(ZEMAD_Error(kKernel, "s", 1, kLow, 99, "t"), 400012);
  EXPECT_EQ(ZEMAD_Error(17, "s", 1, kFatal, 3, "t"), 0);
  EXPECT_EQ(zemad_errno, 1700003);
}

TEST(Error, AnswersWhetherSomeoneListens) {
  test::LogCapture log;
  EXPECT_EQ(ZEMAD_Error(kKernel, nullptr, 0, kNormal, 0, nullptr), 0);
  log.listen(kKernel, {kNormal});
  EXPECT_NE(ZEMAD_Error(kKernel, nullptr, 0, kNormal, 0, nullptr), 0);
  EXPECT_EQ(ZEMAD_Error(kKernel, nullptr, 0, kLow, 0, nullptr), 0);
  EXPECT_EQ(log.raw(), "");
}

TEST(Error, SeveritySixIsAlwaysOff) {
  test::LogCapture log;
  log.listen(kUtils, {kMinor});
  zemad_errno = 5;
  EXPECT_EQ(ZEMAD_Error(kError, "s", 1, 6, 0, "t"), 5);
  EXPECT_EQ(ZEMAD_Error(kError, nullptr, 0, 6, 0, nullptr), 0);
  EXPECT_EQ(ZEMAD_Error(kError, "s", 1, 7, 0, "t"), 0);
  EXPECT_EQ(ZEMAD_ErrorStart(kError, 6), nullptr);
  EXPECT_EQ(log.raw(), "");
}

TEST(Error, ADumpIsAppendedWithoutHeader) {
  test::LogCapture log;
  log.listen(kKernel, {kNormal});
  std::FILE* dump = ZEMAD_ErrorStart(kKernel, kNormal);
  ASSERT_NE(dump, nullptr);
  std::fputs("one\ntwo\n", dump);
  ZEMAD_ErrorEnd(dump);
  ZEMAD_ErrorEnd(ZEMAD_ErrorStart(kKernel, kLow));
  EXPECT_THAT(log.lines(), ElementsAre("one", "two"));
}

TEST(Error, DoesNotWaitForTheReaderOfAFifo) {
  const test::TempDir dir;
  test::LogCapture log;
  const std::string path = dir / "fifo";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  path.copy(ZEMAD_module_debugfile[kMap][kLow], 127);
  EXPECT_EQ(ZEMAD_Error(kMap, "s", 1, kLow, 0, "lost"), 0);
}

}  // namespace
}  // namespace zem::log
