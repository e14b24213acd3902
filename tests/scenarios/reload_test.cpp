// SIGHUP: what is read again, what stays, and when.
#include <csignal>
#include <filesystem>

#include "tests/scenarios/scenario.h"
#include "tests/support/table.h"

namespace zem::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kRenamedClass =
    "CLASS Renamed\n  SELECT\n    1: ATTR(=,\"msg\");\n  MAP\n    text = $V1;\nEND\n";
constexpr const char* kBrokenClass = "CLASS Broken\n  SELECT\n    1: ATTR(=;\nEND\n";

class Reload : public Scenario {
 protected:
  /// The events of one line each, before and after a reload.
  [[nodiscard]] std::string event_of(std::string_view line) {
    const std::size_t before = home_.events().size();
    home_.log(std::string(line) + "\n");
    return events_after(before + 1).back();
  }
};

TEST_F(Reload, HappensAtOnceAndInItsOrder) {
  start();
  ASSERT_TRUE(reload()) << "no message had to come";
  const std::string trace = home_.trace();
  expect_in_order(trace,
                  {"Restarting...", "Reload Error Module ...", "Reload Kernel configuration ...",
                   "Reloading driver ...", "Driver reload complete", "Reload Z/EM interface ...",
                   "Z/EM interface reload complete"});
  EXPECT_THAT(trace, Not(HasSubstr("WaitEvent error")));
  EXPECT_THAT(trace, Not(HasSubstr("GetEvent error")));
  EXPECT_EQ(event_of("one"), "Line;msg=one;");
}

TEST_F(Reload, TwoHangUpsInOneWaitAreOneReload) {
  start();
  daemon().send(SIGSTOP);
  daemon().send(SIGHUP);
  daemon().send(SIGHUP);
  daemon().send(SIGCONT);
  ASSERT_TRUE(is_traced(kReloaded));
  EXPECT_EQ(event_of("one"), "Line;msg=one;");
  EXPECT_EQ(count_of(kReloaded, home_.trace()), 1);
}

TEST_F(Reload, KeepsTheClassesWhileTheirFileIsBroken) {
  start();
  home_.rewrite(home_.cds_path(), kBrokenClass);
  ASSERT_TRUE(reload());
  EXPECT_THAT(home_.trace(), HasSubstr("Cannot reload configuration"));
  EXPECT_EQ(event_of("x"), "Line;msg=x;");
  home_.rewrite(home_.cds_path(), kRenamedClass);
  ASSERT_TRUE(reload());
  home_.log("x\n");
  expect_events({"Renamed;text=x;"});
}

TEST_F(Reload, TakesTheSenderConfigurationUp) {
  start();
  EXPECT_EQ(event_of("a longer line"), "Line;msg='a longer line';");
  home_.configure("EventMaxSize=24");
  ASSERT_TRUE(reload());
  home_.log("a longer line\nshort\n");
  expect_events({"Line;msg=short;"});
  EXPECT_THAT(home_.trace(), HasSubstr("Z/EM message grows too long"));
}

TEST_F(Reload, LeavesTheSourceAsItWas) {
  start();
  home_.rewrite(home_.fmt_path(), "FORMAT Other\nother %s\nmsg $1\nEND\n");
  home_.configure("UnmatchLog=" + home_ / "elsewhere");
  ASSERT_TRUE(reload());
  EXPECT_EQ(event_of("one"), "Line;msg=one;");
}

struct FatalCase {
  const char* name;
  void (*change)(DaemonHome& home);
  const char* end;
};

class ReloadFatal : public Reload, public testing::WithParamInterface<FatalCase> {};

TEST_P(ReloadFatal, EndsTheDaemon) {
  start();
  EXPECT_EQ(event_of("one"), "Line;msg=one;");
  GetParam().change(home_);
  daemon().send(SIGHUP);
  EXPECT_EQ(daemon().end(), GetParam().end);
  EXPECT_EQ(home_.lock_holder(), daemon().pid()) << "the lock file stays";
}

const FatalCase kFatalCases[] = {
    {"ConfigurationGone", [](DaemonHome& home) { std::filesystem::remove(home.conf_path()); },
     "exit 1"},
    {"ErrorFileGone", [](DaemonHome& home) { std::filesystem::remove(home.err_path()); }, "exit 4"},
    {"ErrorFileBroken", [](DaemonHome& home) { home.rewrite(home.err_path(), "KERNEL\n"); },
     "exit 2"},
};
INSTANTIATE_TEST_SUITE_P(Reload, ReloadFatal, testing::ValuesIn(kFatalCases), kRowName);

struct RelativeCase {
  const char* name;
  const char* settings;
};

class ReloadRelative : public Reload, public testing::WithParamInterface<RelativeCase> {};

TEST_P(ReloadRelative, PathsMeanTheDirectoryOfTheStart) {
  home_.configure(GetParam().settings);
  DaemonProcess::Start start = usual_start();
  start.directory = home_ / "";
  start.arguments = {"-n", "-c", "etc/zemad_logfile.conf"};
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  EXPECT_EQ(event_of("before"), "Line;msg=before;");
  EXPECT_THAT(home_.trace(), HasSubstr("Init: Kernel config file is <etc/zemad_logfile.cds>"));
  home_.rewrite(home_.cds_path(), kRenamedClass);
  home_.configure("EventMaxSize=64");
  ASSERT_TRUE(reload());
  home_.log("after\n");
  expect_events({"Renamed;text=after;"});
}

const RelativeCase kRelativeCases[] = {
    {"BesideTheConfiguration", "#"},
    {"AsSettings", "AdapterErrorFile=etc/zemad_logfile.err\nAdapterCdsFile=etc/zemad_logfile.cds"},
};
INSTANTIATE_TEST_SUITE_P(Reload, ReloadRelative, testing::ValuesIn(kRelativeCases), kRowName);

TEST_F(Reload, AFileWithoutDirectoryMeansTheDirectoryOfTheStart) {
  DaemonProcess::Start start = usual_start();
  start.directory = home_ / "etc";
  start.arguments = {"-n", "-c", "zemad_logfile.conf"};
  launch(start);
  ASSERT_TRUE(is_traced(kWaiting));
  ASSERT_TRUE(reload());
  EXPECT_EQ(event_of("x"), "Line;msg=x;");
  daemon().send(SIGKILL);
  EXPECT_EQ(daemon().end(), "signal 9");
  EXPECT_THAT(daemon().output(),
              testing::StartsWith("No path given for the global configfile, using .\nRunning "));
}

}  // namespace
}  // namespace zem::test
