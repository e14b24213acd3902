#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "tests/scenarios/scenario.h"

namespace zem::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

const std::string kBanner =
    std::string("Running ") + ZEM_DAEMON + " : Korvane/Omnivue Adapter Starting\n";

enum class Told { kAlways, kOnlyATerminal };

struct FailureCase {
  const char* name;
  void (*damage)(DaemonHome& home);
  const char* end;
  Told told;
  const char* message;  ///< among what the terminal shows
  const char* traced;   ///< in the log; "": there is no log
  bool leaves_lock_file;
};

class StartUpFailure : public Scenario, public testing::WithParamInterface<FailureCase> {};

TEST_P(StartUpFailure, OnATerminal) {
  GetParam().damage(home_);
  DaemonProcess::Start start = usual_start();
  start.error_terminal = true;
  launch(start);
  EXPECT_EQ(daemon().end(), GetParam().end);
  EXPECT_THAT(daemon().output() + daemon().errors(), HasSubstr(GetParam().message));
  EXPECT_EQ(home_.lock_holder() == daemon().pid(), GetParam().leaves_lock_file);
  EXPECT_EQ(home_.lock_holder() != 0, GetParam().leaves_lock_file);
  EXPECT_THAT(home_.trace(), HasSubstr(GetParam().traced));
  EXPECT_EQ(home_.trace().empty(), *GetParam().traced == '\0');
}

TEST_P(StartUpFailure, WithoutATerminal) {
  GetParam().damage(home_);
  launch(usual_start());
  EXPECT_EQ(daemon().end(), GetParam().end);
  const std::string shown = daemon().output() + daemon().errors();
  if (GetParam().told == Told::kAlways)
    EXPECT_THAT(shown, HasSubstr(GetParam().message));
  else
    EXPECT_EQ(shown, kBanner);
}

/// The last thing that the log tells when the source fails: its own reasons go to the terminal.
constexpr const char* kSourceFailed = "Initializing driver ...\n";

const FailureCase kFailures[] = {
    {"ConfigurationMissing", [](DaemonHome& home) { fs::remove(home.conf_path()); }, "exit 1",
     Told::kAlways, "stat failed: No such file or directory", "", false},
    {"ConfigurationNotAFile",
     [](DaemonHome& home) {
       fs::remove(home.conf_path());
       fs::create_directory(home.conf_path());
     },
     "exit 1", Told::kAlways, "zemad_logfile.conf: Not a regular file\n", "", false},
    {"ErrorFileMissing", [](DaemonHome& home) { fs::remove(home.err_path()); }, "exit 4",
     Told::kAlways, "zemad EH : error 4 Init: Stat failed on error file <", "", false},
    {"BlankLineInErrorFile", [](DaemonHome& home) { home.rewrite(home.err_path(), "# fine\n\n"); },
     "exit 2", Told::kAlways, "zemad EH : error 2 invalid error config line: ", "", false},
    {"ClassFileMissing", [](DaemonHome& home) { fs::remove(home.cds_path()); }, "exit 1",
     Told::kOnlyATerminal, "", "Can not initialize kernel", false},
    {"ClassFileEndsWithoutNewline",
     [](DaemonHome& home) {
       home.rewrite(home.cds_path(), "CLASS A\n SELECT\n 1: ATTR(=,\"a\");\nEND");
     },
     "exit 1", Told::kOnlyATerminal, "", "Can not initialize kernel", false},
    {"ClassFileWithTheReservedWordOid",
     [](DaemonHome& home) {
       home.rewrite(home.cds_path(), "CLASS OID\n SELECT\n 1: ATTR(=,\"a\");\nEND\n");
     },
     "exit 1", Told::kOnlyATerminal, "", "syntax error", false},
    {"FormatFileMissing", [](DaemonHome& home) { fs::remove(home.fmt_path()); }, "exit 1",
     Told::kOnlyATerminal, "error: cannot open zemad_logfile.fmt", kSourceFailed, false},
    {"FormatFileFaulty",
     [](DaemonHome& home) { home.rewrite(home.fmt_path(), "FORMAT a\n%s\n\nEND\n"); }, "exit 1",
     Told::kOnlyATerminal, "syntax error", kSourceFailed, false},
    {"FormatFileFaultyReadError",
     [](DaemonHome& home) { home.rewrite(home.fmt_path(), "FORMAT a\n%s\nmsg $1\nEND"); }, "exit 1",
     Told::kOnlyATerminal, "error: error reading format file `zemad_logfile.fmt'", kSourceFailed,
     false},
    {"CommDirectoryMissing", [](DaemonHome& home) { fs::remove_all(home.comm_path()); }, "exit 1",
     Told::kOnlyATerminal, "error: lock file open failed, errno=2", kSourceFailed, false},
    {"FifoMissing", [](DaemonHome& home) { fs::remove(home.fifo_path()); }, "exit 1",
     Told::kOnlyATerminal, "error: FIFO open(read) failed, errno=2", kSourceFailed, true},
    {"LogSourceNotToBeOpened",
     [](DaemonHome& home) {
       fs::create_symlink("loop", home / "loop");
       home.configure("LogSources=" + home / "loop");
     },
     "exit 1", Told::kOnlyATerminal, "loop, errno=40", kSourceFailed, true},
    {"NoPlaceForEventsInTestMode",
     [](DaemonHome& home) { home.rewrite(home.conf_path(), "TestMode=YES\n"); }, "exit 1",
     Told::kOnlyATerminal, "", "Cannot create OBX handle. Please check the .conf file.", true},
};
INSTANTIATE_TEST_SUITE_P(StartUp, StartUpFailure, testing::ValuesIn(kFailures),
                         [](const auto& tested) { return tested.param.name; });

class StartUp : public Scenario {
 protected:
  [[nodiscard]] DaemonProcess::Start start_with(std::vector<std::string> arguments) const {
    DaemonProcess::Start start = usual_start();
    start.arguments = std::move(arguments);
    return start;
  }
};

TEST_F(StartUp, ArgumentsThatAreNotUnderstoodShowTheUsage) {
  for (const char* argument : {"-x", "file", "-"}) {
    DaemonProcess::Start start = start_with({argument});
    start.program = "/opt/prog";
    launch(start);
    EXPECT_EQ(daemon().end(), "exit 1");
    EXPECT_EQ(daemon().output(), "Usage : /opt/prog [-d] [-n] [-c configfile]\n");
  }
}

TEST_F(StartUp, APathThatDoesNotFitIsRefusedAndNotCut) {
  launch(start_with({"-n", "-c", "/" + std::string(1023, 'x')}));
  EXPECT_EQ(daemon().end(), "exit 1");
  EXPECT_THAT(daemon().errors(), HasSubstr("at most 1023 bytes are allowed"));
}

TEST_F(StartUp, AnIdThatMakesNoFileNameEndsTheStart) {
  DaemonProcess::Start start = usual_start();
  start.environment["ZEMAD_LOGFILE_ID"] = std::string(20'000, 'x');
  start.error_terminal = true;
  launch(start);
  EXPECT_EQ(daemon().end(), "exit 1");
  EXPECT_THAT(daemon().errors(), HasSubstr("error: lock file open failed, errno=36"));
}

TEST_F(StartUp, TheBannerFollowsTheComplaintsAboutTheConfiguration) {
  const std::string settings = read_file(home_.conf_path());
  home_.rewrite(home_.conf_path(), "nonsense\n" + settings);
  start();
  daemon().send(SIGKILL);
  EXPECT_EQ(daemon().end(), "signal 9");
  EXPECT_EQ(daemon().output(), "syntax error in configuration file, line 2 ignored\n" + kBanner);
}

TEST_F(StartUp, TheHomeComesFromTheEnvironmentAndTheNameFromArgumentZero) {
  DaemonProcess::Start start = start_with({"-n"});
  start.environment["ZEMADHOME"] = home_ / "";
  start.program = "/opt/zemad_logfile";
  launch(start);
  EXPECT_TRUE(is_traced(kWaiting));
}

TEST_F(StartUp, WithoutHomeTheBuiltInPlaceIsNamed) {
  launch(start_with({"-n", "-c"}));
  EXPECT_EQ(daemon().end(), "exit 1");
  EXPECT_EQ(daemon().output(),
            "ZEMADHOME environment variable not defined, using /etc/Korvane/zemad\n");
}

TEST_F(StartUp, OtherRelativePathsMeanTheConfigurationDirectory) {
  home_.rewrite(home_.conf_path(), "TestMode=YES\nServerLocation=sent\nUnmatchLog=not_matched\n");
  home_.rewrite(home_.fmt_path(), "FORMAT Known\nknown %s\nmsg $1\nEND\n");
  start();
  home_.log("unknown\n");
  EXPECT_TRUE(eventually([this] { return read_file(home_ / "etc/not_matched") == "unknown\n"; }));
  EXPECT_EQ(read_file(home_ / "etc/sent"), "\n") << "the first, empty event";
}

TEST_F(StartUp, StagesComeInTheirOrder) {
  start();
  expect_in_order(home_.trace(), {"Init: Error file is <", "Init: Kernel config file is <",
                                  "Initializing Z/EM interface ...", "Initializing driver ...",
                                  "Driver initialization complete", "Starting main loop...\n\n",
                                  "Main loop : waiting for event", "Main loop : receiving event"});
  EXPECT_EQ(home_.event_bytes(), "\n") << "the first, empty event";
}

struct ForegroundCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* setting;
};

class Foreground : public StartUp, public testing::WithParamInterface<ForegroundCase> {};

TEST_P(Foreground, KeepsProcessGroupAndStreams) {
  home_.configure(GetParam().setting);
  DaemonProcess::Start start = start_with(GetParam().arguments);
  start.arguments.insert(start.arguments.end(), {"-c", home_.conf_path()});
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  EXPECT_EQ(home_.lock_holder(), daemon().pid());
  EXPECT_EQ(::getpgid(daemon().pid()), ::getpgid(0));
  EXPECT_THAT(open_files(daemon().pid()), Contains(Pair(1, StartsWith("pipe:"))));
  EXPECT_TRUE(eventually([this] { return !daemon().is_alive() || daemon().output() == kBanner; }));
}

const ForegroundCase kForegroundCases[] = {
    {"AsTold", {"-n"}, "#"},
    {"ForDebugging", {"-d"}, "#"},
    {"AsASetting", {}, "WellBehavedDaemon=true"},
};
INSTANTIATE_TEST_SUITE_P(StartUp, Foreground, testing::ValuesIn(kForegroundCases),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(StartUp, InTheBackgroundTheParentLeavesAndTheChildHoldsNothingOfIt) {
  OrphanProcess::adopt_orphans();
  home_.configure("WellBehavedDaemon=yes");
  launch(start_with({"-c", home_.conf_path()}));
  EXPECT_EQ(daemon().end(), "exit 0");
  ASSERT_TRUE(is_traced(kWaiting));
  OrphanProcess child(home_.lock_holder());
  EXPECT_NE(child.pid(), daemon().pid());
  EXPECT_EQ(::getpgid(child.pid()), child.pid());
  EXPECT_EQ(::getsid(child.pid()), ::getsid(0)) << "the session is kept";
  for (int fd = 0; fd <= 2; ++fd)
    EXPECT_THAT(open_files(child.pid()), Contains(Pair(fd, "/dev/null")));
  EXPECT_TRUE(eventually([this] { return daemon().is_output_closed(); }));
  EXPECT_EQ(daemon().output(), kBanner) << "exactly once";

  home_.log("one\n");
  EXPECT_THAT(events_after(1), testing::ElementsAre("Line;msg=one;"));
  child.send(SIGKILL);
  EXPECT_EQ(child.end(), "signal 9");
}

TEST_F(StartUp, InheritedDescriptorsAreClosedUnlessToldNotTo) {
  for (const char* option : {"-n", "-d"}) {
    DaemonProcess::Start start = start_with({option, "-c", home_.conf_path()});
    start.extra_descriptor = 100;
    home_.rewrite(home_ / "trace", "");
    launch(start);
    ASSERT_TRUE(is_traced(kWaiting));
    EXPECT_EQ(open_files(daemon().pid()).count(100), option[1] == 'n' ? 1U : 0U) << option;
  }
}

TEST_F(StartUp, ClosedStandardStreamsAreNotTakenByTheDaemonsFiles) {
  DaemonProcess::Start start = usual_start();
  start.closed_streams = true;
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  for (int fd = 0; fd <= 2; ++fd)
    EXPECT_THAT(open_files(daemon().pid()), Contains(Pair(fd, "/dev/null")));
}

TEST_F(StartUp, OnATerminalTheSetAndEachMatchAreShown) {
  DaemonProcess::Start start = start_with({"-d", "-c", home_.conf_path()});
  start.output_terminal = true;
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  home_.log("two words\n");
  EXPECT_EQ(events_after(1).size(), 1U);
  daemon().send(SIGKILL);
  EXPECT_EQ(daemon().end(), "signal 9");
  EXPECT_THAT(daemon().output(), AllOf(HasSubstr("Line numVars 1\r\n%s*\r\n"),
                                       EndsWith("matched Line\r\n\t$1 is `two words'\r\n")));
}

TEST_F(StartUp, ABadPollIntervalIsNamedWithTheValueInUse) {
  home_.configure("PollInterval=soon");
  DaemonProcess::Start start = usual_start();
  start.error_terminal = true;
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  daemon().send(SIGKILL);
  EXPECT_EQ(daemon().end(), "signal 9");
  EXPECT_THAT(daemon().errors(),
              HasSubstr("warning: bad PollInterval soon, using default of 120 seconds"));
}

}  // namespace
}  // namespace zem::test
