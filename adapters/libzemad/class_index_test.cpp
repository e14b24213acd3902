#include "adapters/libzemad/class_index.h"

#include <string>

#include "adapters/libzemad/parse_config.h"
#include "tests/support/class_text.h"
#include "tests/support/table.h"

namespace {

using zem::kernel::ClassIndex;

std::string dump(ClassIndex::Candidates candidates) {
  std::string text;
  for (auto at = candidates.next(); at != ClassIndex::kEnd; at = candidates.next()) {
    text += std::to_string(at) + " ";
  }
  return text;
}

/// The positions to try for the id, in the order in which they are named.
std::string candidates(const char* classes, const char* id) {
  const zem::test::ScopedClasses loaded(classes);
  const ClassIndex index(ZEMAD_ConfigurationList, ZEMAD_ConstantList);
  return dump(id == nullptr ? index.without_id() : index.of(id));
}

struct IndexCase {
  const char* name;
  const char* classes;
  const char* id;  ///< null: the event has none
  const char* candidates;
};
class ClassIndexTest : public testing::TestWithParam<IndexCase> {};

TEST_P(ClassIndexTest, NamesTheClassesToTry) {
  EXPECT_EQ(candidates(GetParam().classes, GetParam().id), GetParam().candidates);
}

#define ID(k) "SELECT 1: ATTR(=,\"_event_id\"), VALUE(=,\"" k "\"); "
constexpr char kGenerated[] =
    "CLASS A " ID("0") "END CLASS B " ID("1") "2: ATTR(=,\"x\"); END CLASS C " ID("0") "END";
constexpr char kMixed[] = "CLASS A SELECT 1: ATTR(=,\"x\"); END CLASS B " ID(
    "7") "END CLASS C END CLASS D " ID("7") "END CLASS E SELECT 1: ATTR(=,\"y\"); END";
constexpr char kOddIds[] = "CLASS A " ID("007") "END CLASS B " ID("7") "END CLASS C " ID(
    "") "END CLASS D " ID("99999999999") "END CLASS E " ID("7x") "END";
constexpr char kOtherShapes[] =
    "CLASS A SELECT 1: ATTR(=,\"_event_id\"), VALUE(=,7); END"
    " CLASS B SELECT 1: ATTR(PREFIX,\"_event_id\"), VALUE(=,\"7\"); END"
    " CLASS C SELECT 1: ATTR(=,\"_event_id\"), VALUE(PREFIX,\"7\"); END"
    " CLASS D SELECT 1: ATTR(=,\"_event_id\"), KEY(=,\"\"), VALUE(=,\"7\"); END"
    " CLASS E SELECT 1: ATTR(=,\"x\"); 2: ATTR(=,\"_event_id\"), VALUE(=,\"7\"); END"
    " CLASS F SELECT 1: ATTR(=,\"_event_id\"); END";
#undef ID

const IndexCase kIndexCases[] = {{"EveryClassOfTheIdInFileOrder", kGenerated, "0", "0 2 "},
                                 {"EventWithoutId", kGenerated, nullptr, ""},
                                 {"OtherShapesAtTheirPlace", kMixed, "7", "0 1 2 3 4 "},
                                 {"OtherShapesForAnyId", kMixed, "8", "0 2 4 "},
                                 {"IdsAreTextsNotNumbers", kOddIds, "7", "1 "},
                                 {"LeadingZeros", kOddIds, "007", "0 "},
                                 {"LongNumber", kOddIds, "99999999999", "3 "},
                                 {"EmptyId", kOddIds, "", "2 "},
                                 {"IdThatIsNoNumber", kOddIds, "7x", "4 "},
                                 {"WhatIsNoPlainTestOfTheId", kOtherShapes, "x", "0 1 2 3 4 5 "}};
INSTANTIATE_TEST_SUITE_P(Table, ClassIndexTest, testing::ValuesIn(kIndexCases),
                         zem::test::kRowName);

}  // namespace
