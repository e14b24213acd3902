/// The SELECT clause: which attributes of the current event a class is made for.
#pragma once

#include "adapters/libzemad/configuration.h"

/// Operator codes of the class language.
enum ZEMAD_Operator : int {
  ZEMAD_OPERATOR_EQUAL = 1,
  ZEMAD_OPERATOR_PREFIX = 2,
  ZEMAD_OPERATOR_SUFFIX = 3,
  ZEMAD_OPERATOR_NOT_EQUAL = 4,
  ZEMAD_OPERATOR_GREATER = 5,
  ZEMAD_OPERATOR_GREATER_EQUAL = 6,
  ZEMAD_OPERATOR_LESS = 7,
  ZEMAD_OPERATOR_LESS_EQUAL = 8,
  ZEMAD_OPERATOR_EXISTS = 9,
  ZEMAD_OPERATOR_CONTAINS = 10,
};

/// 1 when every item holds, 0 otherwise. Makes the lists of names, keys and values (which the
/// caller has emptied before) and fills them with what the items matched.
int ZEMAD_EvalSelect(const SL_List* selects);
/// One KEY or VALUE test on an entry of the event; 1 or 0.
int ZEMAD_TestSelectKey(int operator_code, const AttributeEntry* entry,
                        const AttributeEntry* operand);
int ZEMAD_TestSelectValue(int operator_code, const AttributeEntry* entry,
                          const AttributeEntry* operand);
