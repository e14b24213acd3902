/// Accessors to what a rule may name: keywords, constants, and the names, keys, values and fetch
/// results of the class being tried. Get borrows, Eval copies, Find looks an attribute up.
#pragma once

#include "adapters/libzemad/configuration.h"

AttributeEntry* ZEMAD_GetGlobalEntry(int index);
AttributeEntry* ZEMAD_GetConstantEntry(int index);
AttributeEntry* ZEMAD_GetNameAttrEntry(int index);
AttributeEntry* ZEMAD_GetKeyAttrEntry(int index);
AttributeEntry* ZEMAD_GetValueAttrEntry(int index);
AttributeEntry* ZEMAD_GetFetchEntry(int index);

AttributeEntry* ZEMAD_EvalGlobalEntry(int index, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalConstantEntry(int index, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalNameAttrEntry(int index, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalKeyAttrEntry(int index, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalValueAttrEntry(int index, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalFetchEntry(int index, int count, SL_List* arguments);

/// SUBSTR(text, position, length), IPNAME(address), IPADDR(host): the built-in functions.
AttributeEntry* ZEMAD_EvalSubstr(int number, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalIPname(int number, int count, SL_List* arguments);
AttributeEntry* ZEMAD_EvalIPaddr(int number, int count, SL_List* arguments);

Attribute* ZEMAD_GetAttributeGlobal(int operator_code, int index);
Attribute* ZEMAD_GetAttributeConstant(int operator_code, int index);
Attribute* ZEMAD_GetAttributeNameAttr(int operator_code, int index);
Attribute* ZEMAD_GetAttributeKeyAttr(int operator_code, int index);
Attribute* ZEMAD_GetAttributeValueAttr(int operator_code, int index);
