#include "adapters/libzemad/parse_config.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "adapters/libzemad/class_writer.h"
#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/frame.h"
#include "tests/support/agent_settings.h"
#include "tests/support/file_time.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace zem::kernel {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

constexpr char kOldClass[] = "CLASS Old END\n";
constexpr char kNewClass[] = "CLASS New END\n";
constexpr char kBroken[] = "CLASS CLASS\n";

/// Names of the classes in force, each followed by a blank.
std::string classes() {
  std::string names;
  for (const auto* config : util::sl_items<Config>(ZEMAD_ConfigurationList)) {
    names += std::string(config->ClassName) + " ";
  }
  return names;
}

/// One class file, its modification time set by hand.
class KernelConfiguration : public testing::Test {
 protected:
  KernelConfiguration() { settings_.set("AdapterCdsFile=" + path_ + "\n"); }
  ~KernelConfiguration() override { ZEMAD_KernelCleanup(); }

  void write(std::string_view text, time_t modified_s) {
    dir_.write("x.cds", text);
    test::set_modified(path_, modified_s);
  }

  /// The old class is in force; what was said of that is forgotten.
  void load_old() {
    write(kOldClass, 1000);
    ASSERT_EQ(ZEMAD_KernelInit(), 0);
    EXPECT_EQ(classes(), "Old ");
    log_.clear();
  }
  /// `result` of a reload, after which these classes are in force.
  static void expect_reload(int result, const std::string& names) {
    EXPECT_EQ(ZEMAD_KernelReload(), result);
    EXPECT_EQ(classes(), names);
  }

  [[nodiscard]] std::string line(const std::string& severity_and_number, const std::string& before,
                                 const std::string& after = "") const {
    return severity_and_number + " " + before + "<" + path_ + ">" + after;
  }
  const std::string is_file_ = "Init: Kernel config file is ";

  test::TempDir dir_;
  const std::string path_ = dir_ / "x.cds";
  test::AgentSettings settings_{""};
  test::LogCapture log_{log::kParser};
};

TEST_F(KernelConfiguration, IsLoadedOnceUntilItChanges) {
  load_old();
  const SL_List* loaded = ZEMAD_ConfigurationList;
  EXPECT_EQ(ZEMAD_KernelReload(), 1);
  EXPECT_EQ(ZEMAD_ConfigurationList, loaded);
  EXPECT_THAT(log_.lines(), ElementsAre("LOW PARSER 0 Reload Kernel configuration ...",
                                        line("LOW PARSER 0", is_file_),
                                        "LOW PARSER 0 Not reloading kernel (no changes)"));
}

TEST_F(KernelConfiguration, SaysThatItIsTheFirstOfTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process in which nothing has been loaded
  const auto init = [&] {
    write(kOldClass, 1000);
    ZEMAD_KernelInit();
    for (const std::string& text : log_.texts()) std::fprintf(stderr, "%s\n", text.c_str());
    std::exit(0);
  };
  EXPECT_EXIT(init(), testing::ExitedWithCode(0),
              "^Init: Kernel config file is <.*/x.cds>\nInit, first call\n$");
}

TEST_F(KernelConfiguration, IsReplacedByANewOne) {
  load_old();
  write(kNewClass, 1001);
  log_.listen(log::kParser, {log::kNormal});
  expect_reload(1, "New ");
  EXPECT_THAT(log_.lines(),
              ElementsAre("LOW PARSER 0 Reload Kernel configuration ...",
                          line("LOW PARSER 0", is_file_), "LOW PARSER 0 Time changed",
                          "Line   1: CLASS New END", "Line   2: ", "ZEMAD_ConfigurationList", "",
                          "CLASS 1: New", "", "ZEMAD_ConstantList", "", "", "ZEMAD_DefaultMapList",
                          "", "NORMAL PARSER 0 Kernel old configuration freed",
                          "LOW PARSER 0 Reload Kernel configuration completed"));
}

TEST_F(KernelConfiguration, OnlyWholeSecondsCount) {
  load_old();
  dir_.write("x.cds", kNewClass);
  test::set_modified(path_, 1000, 999'999'999);
  expect_reload(1, "Old ");
}

TEST_F(KernelConfiguration, SurvivesABrokenFileThatIsTriedOnce) {
  load_old();
  write(kBroken, 1001);
  expect_reload(0, "Old ");
  EXPECT_THAT(
      log_.lines(),
      ElementsAre(
          "LOW PARSER 0 Reload Kernel configuration ...", line("LOW PARSER 0", is_file_),
          "LOW PARSER 0 Time changed",
          "MAJOR PARSER 8 Parser " + path_ + ":syntax error on line 2 current keyword \"CLASS\"",
          "", line("MAJOR PARSER 1", "Kernel config file ", " could not be parsed"),
          "MAJOR PARSER 1 Can not reload kernel", "MAJOR PARSER 1 Old configuration reinstalled"));
  expect_reload(1, "Old ");
  write(kNewClass, 1002);
  expect_reload(1, "New ");
}

TEST_F(KernelConfiguration, SurvivesAMissingFile) {
  load_old();
  std::filesystem::remove(path_);
  expect_reload(0, "Old ");
  EXPECT_THAT(log_.lines(), ElementsAre("LOW PARSER 0 Reload Kernel configuration ...",
                                        line("LOW PARSER 0", is_file_),
                                        "MAJOR PARSER 4 Stat failed, does file exists ?",
                                        "MAJOR PARSER 1 Can not reload kernel",
                                        "MAJOR PARSER 1 Old configuration reinstalled"));
}

TEST_F(KernelConfiguration, AnotherPathIsAChangeAtTheSameTime) {
  load_old();
  const std::string other = dir_.write("y.cds", kNewClass);
  test::set_modified(other, 1000);
  settings_.set("AdapterCdsFile=" + other + "\n");
  expect_reload(1, "New ");
  EXPECT_THAT(log_.texts(), testing::Contains("Filename changed"));
}

TEST_F(KernelConfiguration, AFileThatAppearsIsLoadedWhateverItsTime) {
  load_old();
  settings_.set("AdapterCdsFile=" + (dir_ / "y.cds") + "\n");
  EXPECT_EQ(ZEMAD_KernelReload(), 0);
  test::set_modified(dir_.write("y.cds", kNewClass), 1000);
  expect_reload(1, "New ");
}

TEST_F(KernelConfiguration, ThatIsBadAtTheStartLeavesNothing) {
  const auto expect_failure = [this](int result, const std::string& last_line) {
    EXPECT_EQ(ZEMAD_KernelInit(), result);
    EXPECT_EQ(log_.lines().back(), last_line);
    EXPECT_EQ(ZEMAD_ConfigurationList, nullptr);
    EXPECT_EQ(ZEMAD_ConstantList, nullptr);
    EXPECT_EQ(ZEMAD_DefaultMapList, nullptr);
  };
  const std::string file = "MAJOR PARSER 1 Kernel config file <" + path_ + "> could not be ";
  expect_failure(-4, "MAJOR PARSER 4 Stat failed, does file exists ?");
  ASSERT_EQ(::mknod(path_.c_str(), S_IFSOCK | 0600, 0), 0);
  expect_failure(-1, file + "opened");
  std::filesystem::remove(path_);
  write("MAP_DEFAULT a=1; END CLASS A MAP b=2; END CLASS 5 END\n", 1000);
  expect_failure(-1, file + "parsed");
}

TEST_F(KernelConfiguration, MayHoldNoClasses) {
  write("# none\n", 1000);
  EXPECT_EQ(ZEMAD_KernelInit(), 0);
  EXPECT_EQ(ZEMAD_ConfigurationList, nullptr);
}

TEST_F(KernelConfiguration, ThatCanNotBeReadToItsEndIsRefused) {
  settings_.set("AdapterCdsFile=" + dir_.path().string() + "\n");
  EXPECT_EQ(ZEMAD_KernelInit(), -1);
}

/// Without a setting the file is named after the program, and so are its messages.
TEST_F(KernelConfiguration, IsNamedAfterTheProgramByDefault) {
  settings_.set("");
  dir_.path().string().copy(ZEMAD_GlobalConfigDir, sizeof ZEMAD_GlobalConfigDir - 1);
  std::string("prog").copy(ZEMAD_ProgramName, sizeof ZEMAD_ProgramName - 1);
  const std::string path = dir_.write("prog.cds", kBroken);
  EXPECT_EQ(ZEMAD_KernelInit(), -1);
  EXPECT_EQ(log_.texts().back(), "Kernel config file <" + path + "> could not be parsed");
  ZEMAD_GlobalConfigDir[0] = ZEMAD_ProgramName[0] = '\0';
}

TEST_F(KernelConfiguration, NoMemoryForThePathIsReported) {
  const util::ScopedAllocationFailure failure(0);
  EXPECT_EQ(ZEMAD_KernelInit(), -4);
  EXPECT_THAT(log_.lines(), ElementsAre("MAJOR PARSER 4 Strdup failed"));
}

TEST_F(KernelConfiguration, CleanupLeavesNothing) {
  write("CLASS A MAP a=1; END MAP_DEFAULT b=2; END\n", 1000);
  ASSERT_EQ(ZEMAD_KernelInit(), 0);
  EXPECT_EQ(ZEMAD_KernelCleanup(), 1);
  EXPECT_EQ(log_.texts().back(), "Kernel configuration cleaned up");
  EXPECT_EQ(ZEMAD_ConfigurationList, nullptr);
  EXPECT_EQ(ZEMAD_ConstantList, nullptr);
  EXPECT_EQ(ZEMAD_DefaultMapList, nullptr);
}

TEST_F(KernelConfiguration, IsDumpedWithEveryRecord) {
  write(
      "CLASS A SELECT 1: ATTR(=,a), KEY(PREFIX,b), VALUE(>,1); FETCH 1: IPNAME($V1);"
      "MAP m=PRINTF('%s',$V1,$F1); n=a; END\nMAP_DEFAULT d=1; END\n",
      1000);
  log_.listen(log::kParser, {log::kNormal});
  ASSERT_EQ(ZEMAD_KernelInit(), 0);
  const std::string raw = log_.raw();
  EXPECT_THAT(
      raw.substr(raw.find("ZEMAD_Conf")),
      MatchesRegex("ZEMAD_ConfigurationList\n\n"
                   "CLASS 1: A\nSelect:\n"
                   " Attr: 1: [0-9A-F]+ .0.  Key: 2: [0-9A-F]+ .1.  Value: 5: [0-9A-F]+ .2. \n"
                   "Fetch:\nslot 1:\n  1: -?[0-9]+ .1. \n   1: -?[0-9]+ .0. \n"
                   "Map:\nslot 1: m: %s: var 1: [0-9]+ .0. var 2: [0-9]+ .0. \n"
                   "slot 2: n: NULL: var 1: [0-9]+ .0. \n"
                   "\nZEMAD_ConstantList\n\n"
                   "ZEMAD_TYPE 1\t2\t\"a\"\nZEMAD_TYPE 1\t2\t\"b\"\nZEMAD_TYPE 2\t4\t\"1\"\n"
                   "\nZEMAD_DefaultMapList\n\n"
                   "slot 1: d: NULL: var 1: [0-9]+ .2. \n"));
}

// Tables and constants ----------------------------------------------------------------------------

TEST(OperandTables, FetchHasNoRowForFetchResults) {
  EXPECT_EQ(ZEMAD_GetOperatorFetch(ZEMAD_ACCESS_FETCH), nullptr);
  EXPECT_EQ(ZEMAD_GetOperator(ZEMAD_ACCESS_FETCH), ZEMAD_EvalFetchEntry);
  EXPECT_EQ(ZEMAD_GetOperatorFetch(ZEMAD_ACCESS_VALUE), ZEMAD_EvalValueAttrEntry);
}

TEST(OperandTables, HaveNothingOutsideTheirRows) {
  for (const int access : {-1, 0, 7}) {
    EXPECT_EQ(ZEMAD_GetOperatorAttrName(access), nullptr);
    EXPECT_EQ(ZEMAD_GetOperatorAttr(access), nullptr);
    EXPECT_EQ(ZEMAD_GetOperatorFetch(access), nullptr);
    EXPECT_EQ(ZEMAD_GetOperator(access), nullptr);
  }
}

TEST(Constants, KeepTheirPositionsFromFirstUse) {
  EXPECT_EQ(ZEMAD_AddConstantString("a"), 0);
  EXPECT_EQ(ZEMAD_AddConstantInt(5), 1);
  EXPECT_EQ(ZEMAD_AddConstantString("5"), 2);
  EXPECT_EQ(ZEMAD_AddConstantInt(5), 1);
  EXPECT_EQ(ZEMAD_AddConstantString("a"), 0);
  EXPECT_EQ(ZEMAD_ConstantList->capacity, 5);
  SL_InsLast(ZEMAD_ConstantList, ZEMAD_MakeStringAttributeEntry("by another way"));
  EXPECT_EQ(ZEMAD_AddConstantString("by another way"), 3);
  ZEMAD_KernelCleanup();
}

}  // namespace
}  // namespace zem::kernel
