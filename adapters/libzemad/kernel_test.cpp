#include "adapters/libzemad/kernel.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/fetch.h"
#include "adapters/libzemad/map.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/select.h"
#include "tests/support/class_text.h"
#include "tests/support/entry.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using zem::test::CurrentEvent;
using zem::test::Entry;
using zem::test::LogCapture;
using zem::test::ScopedClasses;

/// "name=value;" of every outgoing slot.
std::string dump_slots() {
  std::string slots;
  for (const MapEntry* slot : zem::util::sl_items<MapEntry>(ZEMAD_MapEntryList)) {
    slots += std::string(slot->Name) + "=" + slot->Value + ";";
  }
  return slots;
}

/// The class and its slots as "Class: a=1;", or "dropped".
std::string select_class() {
  const char* class_name = ZEMAD_KernelSelect();
  std::string result =
      class_name == nullptr ? "dropped" : std::string(class_name) + ": " + dump_slots();
  EXPECT_TRUE(class_name != nullptr || ZEMAD_MapEntryList == nullptr);
  EXPECT_EQ(ZEMAD_KernelSelectCleanup(), 1);
  return result;
}

void listen_to_the_kernel(LogCapture& log, std::initializer_list<zem::log::Severity> severities) {
  for (const auto module : {zem::log::kKernel, zem::log::kSelect, zem::log::kFetch, zem::log::kMap,
                            zem::log::kDriver}) {
    log.listen(module, severities);
  }
}

// What becomes of an event ------------------------------------------------------------------------

struct SelectCase {
  const char* name;
  const char* classes;
  const char* result;
  const char* errors = "";  ///< MINOR and MAJOR messages, each with a newline behind it
};

class KernelSelect : public testing::TestWithParam<SelectCase> {
 protected:
  static std::string select() {
    const CurrentEvent event({{"x", "first", "k1"},
                              {"x", "second", "k2"},
                              {"n", 7, ""},
                              {"host", "gateway", Entry::none()},
                              {"null", Entry::null(), Entry::null()}});
    return select_class();
  }
};

TEST_P(KernelSelect, DecidesAndFillsTheSlots) {
  const ScopedClasses classes(GetParam().classes);
  LogCapture log;
  listen_to_the_kernel(log, {zem::log::kMinor, zem::log::kMajor});
  EXPECT_EQ(select(), GetParam().result);
  std::string errors;
  for (const std::string& line : log.lines()) errors += line + "\n";
  EXPECT_EQ(errors, GetParam().errors);
}

const SelectCase kSelectCases[] = {
    {"NoClasses", "", "dropped"},
    {"FirstMatchWins", R"(CLASS A SELECT 1: ATTR(=,"nothing"); END
           CLASS B SELECT 1: ATTR(=,"x"); END
           CLASS C SELECT 1: ATTR(=,"x"); END)",
     "B: "},
    {"DiscardTakesItsTurn", R"(CLASS *DISCARD* SELECT 1: ATTR(=,"x"); END
           CLASS B SELECT 1: ATTR(=,"x"); END)",
     "dropped"},
    {"ClassWithoutSelectNeverMatches",
     R"(CLASS A END
           CLASS B SELECT 1: ATTR(=,"x"); END)",
     "B: ", "MAJOR SELECT 24 No selection clause (failure)\n"},
    {"AllItemsMustHold", R"(CLASS A SELECT 1: ATTR(=,"x"); 2: ATTR(=,"nothing"); END)", "dropped"},
    {"OnlyTheFirstAttributeOfANameIsTried",
     R"(CLASS A SELECT 1: ATTR(=,"x"), VALUE(=,"second"); END)", "dropped"},
    {"PrefixAndSuffixOfNames", R"(CLASS A SELECT 1: ATTR(PREFIX,"ho"); 2: ATTR(SUFFIX,"st");
           MAP a = $V1; b = $N2; END)",
     "A: a=gateway;b=host;"},
    {"ShortForm", R"(CLASS A SELECT 1: "host" = "gateway"; END)", "A: "},
    {"OrderOnKeysIsRefused", R"(CLASS A SELECT 1: ATTR(=,"x"), KEY(>,"k"); END)", "dropped",
     "MAJOR SELECT 15 Operation on key not supported.\n"},
    {"KeyThatIsNotThere", R"(CLASS A SELECT 1: ATTR(=,"host"), KEY(=,"x"); END)", "dropped",
     "MAJOR SELECT 82 ZEMAD_TestSelectKey failure\n"},
    {"OperandThatIsNotThere",
     R"(CLASS A SELECT 1: ATTR(=,"host"); 2: ATTR(=,"x"), VALUE(=,$K1); END)", "dropped",
     "MINOR SELECT 60 Value Operator failure\n"},
    {"AttributeNamedByWhatIsNotThere", R"(CLASS A SELECT 1: ATTR(=,"host"); 2: ATTR(=,$K1); END)",
     "dropped", "MAJOR KERNEL 82 ZEMAD_GetAttributeKeyAttr failure\n"},
    {"ItemsReferToEarlierOnes",
     R"(CLASS A SELECT 1: ATTR(=,"x"); 2: ATTR(=,$N1), VALUE(=,$V1); 3: ATTR(=,"x"), KEY(=,$K2);
           MAP n = $N3; k = $K3; v = $V3; END)",
     "A: n=x;k=k1;v=first;"},
    {"TheLosersListsAreGone", R"(CLASS A SELECT 1: ATTR(=,"host"); 2: ATTR(=,"nothing"); END
           CLASS B SELECT 1: ATTR(=,"x"); MAP v = $V1; END)",
     "B: v=first;"},
    {"ClassLineReplacesTheDefault", R"(MAP_DEFAULT source = LOG; severity = WARNING; END
           CLASS A SELECT 1: ATTR(=,"x"); MAP severity = FATAL; msg = $V1; msg = twice; END)",
     "A: source=LOG;severity=FATAL;msg=twice;"},
    {"FetchResults", R"(CLASS A SELECT 1: ATTR(=,"host"); 2: ATTR(=,"n");
           FETCH 1: SUBSTR($V1, 1, 4); 2: SUBSTR(SUBSTR($V1, 2, 6), $V2, 9); 3: $F1; 4: SUBSTR($F3, 2, 2);
           MAP a = $F1; b = $F2; c = $F3; d = PRINTF("<%4s>", $F4); END)",
     "A: a=gate;b=;c=gate;d=<  at>;"},
    {"FetchFails",
     R"(MAP_DEFAULT source = LOG; END
           CLASS A SELECT 1: ATTR(=,"host"); FETCH 1: SUBSTR(SUBSTR($V1, x, 1), 1, 1); MAP a = b; END)",
     "dropped",
     "MAJOR KERNEL 61 Substring argument 2 no integer\n"
     "MAJOR FETCH 13 Operator failure\n"
     "MAJOR FETCH 12 SubExpression failure\n"
     "MAJOR FETCH 14 Calculate Fetch failure\n"},
    {"MapFails",
     R"(MAP_DEFAULT source = LOG; END
           CLASS A SELECT 1: ATTR(=,"host"); MAP a = $N1; b = $K1; END)",
     "dropped",
     "MAJOR KERNEL 82 ZEMAD_EvalKeyAttrEntry failure\n"
     "MAJOR MAP 10 Variable failure\n"
     "MAJOR MAP 11 Calculate Map failure\n"},
    {"FormatMistakesKeepTheEvent",
     R"(CLASS A SELECT 1: ATTR(=,"null"); 2: ATTR(=,"n");
           MAP a = PRINTF("[%s]", $V1); b = $V1; c = PRINTF("%d", $V2); END)",
     "A: a=[s];b=;c=7;",
     "MAJOR MAP 51 EvalMapPrintAttr failure\n"
     "MAJOR MAP 51 EvalMapPrintAttr failure\n"
     "MAJOR MAP 51 Format not %s\n"}};
INSTANTIATE_TEST_SUITE_P(Table, KernelSelect, testing::ValuesIn(kSelectCases), zem::test::kRowName);

// What it says ------------------------------------------------------------------------------------

TEST(KernelTrace, LowTellsTheActionAndTheSlots) {
  const ScopedClasses classes(R"(CLASS A SELECT 1: ATTR(=,"x"), VALUE(=,"1"); MAP a = $V1; END
           CLASS *DISCARD* SELECT 1: ATTR(=,"x"), VALUE(=,"2"); END)");
  LogCapture log;
  listen_to_the_kernel(log, {zem::log::kLow});
  for (const char* value : {"1", "2", "3"}) {
    const CurrentEvent event({{"x", value}});
    select_class();
  }
  EXPECT_THAT(
      log.lines(),
      ElementsAre("LOW KERNEL 0 Found action is <A>", "LOW FETCH 0 ZEMAD_EvalFetch List NULL",
                  "LOW MAP 0 ZEMAD_EvalMap List NULL", "LOW MAP 0 Selected Map : <a> <1>",
                  "LOW KERNEL 0 Found action is <*DISCARD*>",
                  "LOW KERNEL 0 Default action is <*DISCARD*>"));
}

TEST(KernelTrace, NormalTellsTheClassesTriedAndTheLists) {
  const ScopedClasses classes(R"(CLASS *DISCARD* SELECT 1: ATTR(=,"y"); END
           CLASS A SELECT 1: ATTR(=,"x"); FETCH 1: 5; MAP a = $V1; END)");
  LogCapture log;
  log.listen(zem::log::kKernel, {zem::log::kNormal});
  const CurrentEvent event({{"x", "1", "k"}});
  select_class();
  EXPECT_THAT(
      log.texts(),
      ElementsAre("Entered kernel_select", "Trying Class \"*DISCARD*\"", "Trying Class \"A\"",
                  "ZEMAD_NameAttrList", "", "ZEMAD_TYPE 1\t2\t\"x\"", "", "ZEMAD_KeyAttrList", "",
                  "ZEMAD_TYPE 1\t2\t\"k\"", "", "ZEMAD_ValueAttrList", "", "ZEMAD_TYPE 1\t2\t\"1\"",
                  "", "ZEMAD_FetchList", "", "ZEMAD_TYPE 2\t4\t\"5\"", "", "ZEMAD_MapEntryList", "",
                  "\"a\" -> \"1\"", "Finished kernel_select"));
  EXPECT_EQ(ZEMAD_PrintFileDescr, nullptr);
}

TEST(KernelTrace, NormalOfTheClausesTellsEveryStep) {
  const ScopedClasses classes(R"(MAP_DEFAULT a = d; END
           CLASS A SELECT 1: ATTR(=,"x"); FETCH 1: 5; MAP a = $V1; END)");
  LogCapture log;
  for (const auto module : {zem::log::kSelect, zem::log::kFetch, zem::log::kMap}) {
    log.listen(module, {zem::log::kNormal});
  }
  const CurrentEvent event({{"x", "1", "k"}});
  select_class();
  EXPECT_THAT(
      log.texts(),
      ElementsAre("Entered ZEMAD_EvalSelect", " Name: ZEMAD_TYPE 1\t2\t\"x\"",
                  "  Key: ZEMAD_TYPE 1\t2\t\"k\"", "Value: ZEMAD_TYPE 1\t2\t\"1\"", "",
                  "Correct is TRUE", "Finished ZEMAD_EvalSelect, returning TRUE",
                  "Entered Eval_Fetch", "Entered Eval_Fetch_Expression",
                  "Finished Eval_Fetch_Expression", "Finished Eval_Fetch", "Entered Eval_Map",
                  "Entered Eval_Map_Format", "Entered Eval_Map_Printf", "Finished Eval_Map_Printf",
                  "Finished Eval_Map_Format", "ZEMAD_MapEntryList entry added", "Finished Eval_Map",
                  "Entered Eval_Map", "Entered Eval_Map_Format", "Entered Eval_Map_Printf",
                  "Finished Eval_Map_Printf", "Finished Eval_Map_Format",
                  "ZEMAD_MapEntryList entry replaced", "Finished Eval_Map"));
}

TEST(KernelTrace, VerboseTellsTheOperandsThatAreRead) {
  const ScopedClasses classes(R"(CLASS A SELECT 1: ATTR(=,"x"); MAP a = $V1; b = "x"; END)");
  LogCapture log;
  log.listen(zem::log::kKernel, {zem::log::kVerbose});
  const CurrentEvent event({{"x", "1"}});
  select_class();
  EXPECT_THAT(log.texts(),
              ElementsAre("ZEMAD_GetConstantEntry Index <0>", "ZEMAD_GetValueAttrEntry Index <0>",
                          "ZEMAD_GetConstantEntry Index <0>"));
}

// Broken lists and short memory -------------------------------------------------------------------

TEST(KernelSelectFailure, MissingClassEndsTheSearch) {
  const CurrentEvent event({{"x", "1"}});
  ZEMAD_ConfigurationList = SL_Create();
  SL_InsLast(ZEMAD_ConfigurationList, nullptr);
  LogCapture log(zem::log::kKernel);
  EXPECT_EQ(select_class(), "dropped");
  EXPECT_THAT(log.lines(),
              ElementsAre("LOW KERNEL 0 List failure", "MAJOR KERNEL 22 List failure"));
  ZEMAD_KernelCleanup();
}

TEST(KernelSelectFailure, ReferenceBeyondTheMatchedItems) {
  const CurrentEvent event({{"x", "1"}});
  LogCapture log;
  listen_to_the_kernel(log, {zem::log::kMajor});
  ZEMAD_ValueAttrList = SL_Create();
  Expression beyond{ZEMAD_EvalValueAttrEntry, 2, nullptr};
  EXPECT_EQ(ZEMAD_EvalFetchExpression(&beyond), nullptr);
  ZEMAD_KernelSelectCleanup();
  EXPECT_EQ(ZEMAD_EvalFetchExpression(&beyond), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre("ZEMAD_EvalValueAttrEntry failure", "Operator failure",
                                       "ZEMAD_ValueAttrList NULL failure",
                                       "ZEMAD_EvalValueAttrEntry failure", "Operator failure"));
}

TEST(KernelSelectFailure, EmptySelectListStillMakesTheLists) {
  const zem::util::SlListOf<ZEMAD_FreeSelect> empty(SL_Create());
  LogCapture log(zem::log::kSelect);
  EXPECT_EQ(ZEMAD_EvalSelect(empty.get()), 0);
  EXPECT_NE(ZEMAD_ValueAttrList, nullptr);
  ZEMAD_KernelSelectCleanup();
  EXPECT_EQ(ZEMAD_EvalSelect(nullptr), 0);
  EXPECT_EQ(ZEMAD_ValueAttrList, nullptr);
  EXPECT_EQ(zemad_errno, 400024);
}

/// Whatever request fails, the event is dropped or complete, and nothing is lost or freed twice
/// (the sanitizers watch).
TEST(KernelSelectFailure, ShortMemoryDropsTheEvent) {
  const ScopedClasses classes(R"(MAP_DEFAULT a = d; END
           CLASS A SELECT 1: ATTR(=,"x"); FETCH 1: SUBSTR($V1, 1, 1); MAP a = PRINTF("%600s", $F1); END)");
  const CurrentEvent event({{"x", "1"}});
  const std::string complete = select_class();
  EXPECT_THAT(complete, testing::StartsWith("A: a=   "));
  int granted = 0;
  for (;; ++granted) {
    const zem::util::ScopedAllocationFailure no_memory(granted);
    const std::string result = select_class();
    if (result == complete) break;
    EXPECT_EQ(result, "dropped") << granted;
  }
  EXPECT_GT(granted, 20);
}

TEST(KernelSelectFailure, ShortMemoryIsReportedWhereItHappens) {
  const ScopedClasses classes(R"(CLASS A SELECT 1: ATTR(=,"x"); MAP a = b; END)");
  const CurrentEvent event({{"x", "1"}});
  std::vector<std::string> first_errors;
  for (int granted = 0; granted < 6; ++granted) {
    LogCapture log;
    listen_to_the_kernel(log, {zem::log::kMajor});
    const zem::util::ScopedAllocationFailure no_memory(granted);
    select_class();
    first_errors.push_back(log.lines().at(0));
  }
  EXPECT_THAT(first_errors, ElementsAre("MAJOR SELECT 23 ZEMAD_NameAttrList failure",
                                        "MAJOR SELECT 23 ZEMAD_KeyAttrList failure",
                                        "MAJOR SELECT 23 ZEMAD_ValueAttrList failure",
                                        "MAJOR SELECT 21 ZEMAD_NameAttrList failure",
                                        "MAJOR SELECT 21 ZEMAD_KeyAttrList failure",
                                        "MAJOR SELECT 21 ZEMAD_ValueAttrList failure"));
}

}  // namespace
