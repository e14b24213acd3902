/// Which routine fetches which kind of operand, in each of the four places where a rule may name
/// one. The rows are the kinds in their order, the first kind being 1.
#include <array>
#include <cstddef>

#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/parse_config.h"

namespace {

constexpr std::array<ZEMAD_FindRoutine, 5> kAttrTest = {
    ZEMAD_GetAttributeGlobal,  ZEMAD_GetAttributeConstant,  ZEMAD_GetAttributeNameAttr,
    ZEMAD_GetAttributeKeyAttr, ZEMAD_GetAttributeValueAttr,
};
constexpr std::array<ZEMAD_GetRoutine, 5> kEntryTest = {
    ZEMAD_GetGlobalEntry,  ZEMAD_GetConstantEntry,  ZEMAD_GetNameAttrEntry,
    ZEMAD_GetKeyAttrEntry, ZEMAD_GetValueAttrEntry,
};
/// Deliberate: there is no row for a fetch result (OperandTables.FetchHasNoRowForFetchResults).
constexpr std::array<ZEMAD_EvalRoutine, 5> kFetchOperand = {
    ZEMAD_EvalGlobalEntry,  ZEMAD_EvalConstantEntry,  ZEMAD_EvalNameAttrEntry,
    ZEMAD_EvalKeyAttrEntry, ZEMAD_EvalValueAttrEntry,
};
constexpr std::array<ZEMAD_EvalRoutine, 6> kMapVariable = {
    ZEMAD_EvalGlobalEntry,  ZEMAD_EvalConstantEntry,  ZEMAD_EvalNameAttrEntry,
    ZEMAD_EvalKeyAttrEntry, ZEMAD_EvalValueAttrEntry, ZEMAD_EvalFetchEntry,
};

template <class Routine, std::size_t Rows>
Routine routine_for(const std::array<Routine, Rows>& table, int access) {
  const auto row = static_cast<std::size_t>(access) - ZEMAD_ACCESS_GLOBAL;
  return row < Rows ? table[row] : nullptr;
}

}  // namespace

ZEMAD_FindRoutine ZEMAD_GetOperatorAttrName(int access) { return routine_for(kAttrTest, access); }

ZEMAD_GetRoutine ZEMAD_GetOperatorAttr(int access) { return routine_for(kEntryTest, access); }

ZEMAD_EvalRoutine ZEMAD_GetOperatorFetch(int access) { return routine_for(kFetchOperand, access); }

ZEMAD_EvalRoutine ZEMAD_GetOperator(int access) { return routine_for(kMapVariable, access); }
