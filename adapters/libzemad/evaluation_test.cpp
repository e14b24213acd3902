#include "adapters/libzemad/evaluation.h"

#include <gmock/gmock.h>

#include <string>

#include "adapters/libzemad/fetch.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/map.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using zem::test::LogCapture;
using Borrowed = zem::util::SlListOf<ZEMAD_FreeNo>;

/// No event, no constants, no class being tried: nothing that a rule may name is there.
struct AbsentCase {
  const char* name;  ///< as the accessors spell it
  ZEMAD_GetRoutine get;
  ZEMAD_EvalRoutine eval;
  const char* missing;     ///< what Get says
  ZEMAD_FindRoutine find;  ///< null: the kind names no attribute by its text
  const char* find_failure = "";
};

class AbsentOperand : public testing::TestWithParam<AbsentCase> {};

TEST_P(AbsentOperand, IsReportedByEveryAccessor) {
  const auto& [name, get, eval, missing, find, find_failure] = GetParam();
  LogCapture log;
  log.listen(zem::log::kKernel, {zem::log::kLow, zem::log::kMajor, zem::log::kVerbose});
  const std::string index = std::string("VERBOSE KERNEL 0 ZEMAD_Get") + name + " Index <7>";
  const auto low = [](const std::string& text) { return "LOW KERNEL 0 " + text; };
  const auto major = [](const std::string& text) { return "MAJOR KERNEL 82 " + text; };
  const std::string copy_failure = std::string("ZEMAD_Eval") + name + " failure";

  EXPECT_EQ(get(7), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(index, low(missing), major(missing)));
  log.clear();
  EXPECT_EQ(eval(7, 0, nullptr), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(index, low(missing), major(missing), low(copy_failure),
                                       major(copy_failure)));
  if (find == nullptr) return;
  log.clear();
  EXPECT_EQ(find(1, 7), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(index, low(missing), major(missing), low(find_failure),
                                       major(find_failure)));
}

const AbsentCase kAbsentCases[] = {
    {"GlobalEntry", ZEMAD_GetGlobalEntry, ZEMAD_EvalGlobalEntry,
     "GetAttributeByKeyword NULL failure", nullptr},
    {"ConstantEntry", ZEMAD_GetConstantEntry, ZEMAD_EvalConstantEntry,
     "ZEMAD_ConstantList NULL failure", ZEMAD_GetAttributeConstant,
     "ZEMAD_GetAttributeConstant failure"},
    {"NameAttrEntry", ZEMAD_GetNameAttrEntry, ZEMAD_EvalNameAttrEntry,
     "ZEMAD_NameAttrList NULL failure", ZEMAD_GetAttributeNameAttr,
     "ZEMAD_GetAttributeNameAttr failure"},
    {"KeyAttrEntry", ZEMAD_GetKeyAttrEntry, ZEMAD_EvalKeyAttrEntry,
     "ZEMAD_KeyAttrList NULL failure", ZEMAD_GetAttributeKeyAttr,
     "ZEMAD_GetAttributeKeyAttr failure"},
    {"ValueAttrEntry", ZEMAD_GetValueAttrEntry, ZEMAD_EvalValueAttrEntry,
     "ZEMAD_ValueAttrList NULL failure", ZEMAD_GetAttributeValueAttr,
     "ZEMAD_GetAttributeValueAttr failure"},
    {"FetchEntry", ZEMAD_GetFetchEntry, ZEMAD_EvalFetchEntry, "ZEMAD_FetchList NULL failure",
     nullptr}};
INSTANTIATE_TEST_SUITE_P(Kinds, AbsentOperand, testing::ValuesIn(kAbsentCases),
                         zem::test::kRowName);

/// A list that holds no record where one is due.
TEST(MissingRecord, FailsTheClause) {
  const Borrowed none(SL_Create());
  SL_InsLast(none.get(), nullptr);
  LogCapture log;
  log.listen(zem::log::kFetch, {zem::log::kLow, zem::log::kMajor});
  log.listen(zem::log::kMap, {zem::log::kLow, zem::log::kMajor});
  EXPECT_EQ(ZEMAD_EvalFetch(none.get()), 0);
  EXPECT_EQ(ZEMAD_FetchList, nullptr);
  EXPECT_EQ(ZEMAD_EvalMap(none.get()), 0);
  EXPECT_EQ(ZEMAD_MapEntryList, nullptr);
  EXPECT_THAT(
      log.lines(),
      ElementsAre("LOW FETCH 0 ZEMAD_FetchList failure", "MAJOR FETCH 22 ZEMAD_FetchList failure",
                  "LOW MAP 0 ZEMAD_MapList failure", "MAJOR MAP 22 ZEMAD_MapList failure"));
}

TEST(MissingRecord, MapWithoutVariablesIsToldOnce) {
  char name[] = "slot";
  const Map map{name, nullptr, nullptr};
  LogCapture log(zem::log::kMap);
  EXPECT_EQ(ZEMAD_EvalMapFormat(&map), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("LOW MAP 0 ZEMAD_EvalMapFormat: VariableList NULL"));
}

}  // namespace
