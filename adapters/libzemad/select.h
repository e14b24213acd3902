/// The SELECT clause: which attributes of the current event a class is made for.
#pragma once

#include "adapters/libzemad/configuration.h"

/// 1 when every item holds, 0 otherwise; fills the lists of names, keys and values.
int ZEMAD_EvalSelect(const SL_List* selects);
/// One KEY or VALUE test; 1 or 0.
int ZEMAD_TestSelectKey(int operator_code, const AttributeEntry* entry,
                        const AttributeEntry* operand);
int ZEMAD_TestSelectValue(int operator_code, const AttributeEntry* entry,
                          const AttributeEntry* operand);
