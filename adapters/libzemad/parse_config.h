/// The life of the kernel's configuration: loading the class definition file, reloading it when it
/// has changed (the running one stays in force when the new one is bad), and the record
/// constructors that the parser calls.
#pragma once

#include <string_view>

#include "adapters/libzemad/configuration.h"

extern SL_List* ZEMAD_ConfigurationList;  ///< of Config, in file order; null when empty
extern SL_List* ZEMAD_ConstantList;       ///< of AttributeEntry, each distinct value once
extern SL_List* ZEMAD_DefaultMapList;     ///< of Map, from all MAP_DEFAULT sections

/// 0 loaded, 1 unchanged, -1 not opened or not parsed, -4 no memory or not to be examined.
int ZEMAD_KernelInit();
/// 1 when the kernel runs the new or the unchanged configuration, 0 when the old one was kept.
int ZEMAD_KernelReload();
int ZEMAD_KernelCleanup();
/// Next byte of the file being loaded, or -1.
int zemad_getchar();

// Record constructors: they take their pointers over on success and leave them on failure (null).
Config* ZEMAD_CreateClass(char* name, SL_List* selects, SL_List* fetches, SL_List* maps);
Select* ZEMAD_CreateSelect(int number, SelectOperation* attr, SelectOperation* key,
                           SelectOperation* value);
SelectOperation* ZEMAD_CreateSelectOperation(int operator_code, ZEMAD_FindRoutine find, int index);
SelectOperation* ZEMAD_CreateSelectOperation(int operator_code, ZEMAD_GetRoutine get, int index);
Fetch* ZEMAD_CreateFetch(int number, Expression* expression);
Expression* ZEMAD_CreateFetchArg(ZEMAD_EvalRoutine routine, int number, SL_List* arguments);
Map* ZEMAD_CreateMap(char* slot_name, char* format, SL_List* variables);
Variable* ZEMAD_CreateVariable(ZEMAD_EvalRoutine routine, int index);

/// Kinds of operand, as the parser counts them: the rows of the four routine tables.
enum ZEMAD_Access : int {
  ZEMAD_ACCESS_GLOBAL = 1,
  ZEMAD_ACCESS_CONSTANT = 2,
  ZEMAD_ACCESS_NAME = 3,
  ZEMAD_ACCESS_KEY = 4,
  ZEMAD_ACCESS_VALUE = 5,
  ZEMAD_ACCESS_FETCH = 6,
};
/// The routine for an operand kind; null for a kind that the table does not hold. Deliberate: the
/// FETCH table has no row for ZEMAD_ACCESS_FETCH.
ZEMAD_FindRoutine ZEMAD_GetOperatorAttrName(int access);
ZEMAD_GetRoutine ZEMAD_GetOperatorAttr(int access);
ZEMAD_EvalRoutine ZEMAD_GetOperatorFetch(int access);
ZEMAD_EvalRoutine ZEMAD_GetOperator(int access);

/// Position of the constant in ZEMAD_ConstantList, added when it is new; -1 when that fails.
int ZEMAD_AddConstantString(const char* text);
int ZEMAD_AddConstantInt(long value);

namespace zem::kernel {

/// ZEMAD_AddConstantString of a text that need not end in a NUL.
int add_constant(std::string_view text);
/// Releases the look-up table beside ZEMAD_ConstantList; the next constant that is added makes it
/// again. For whoever has added the last one.
void forget_constant_index();

}  // namespace zem::kernel
