/// The kernel's records: typed values, attributes, slots, and the compiled form of the class
/// definition file. Records are plain, live on the heap of util/heap.h and own everything below
/// them; each is released by its ZEMAD_Free function, which accepts null. Makers return null after
/// reporting when an argument is refused or memory is short, and leave their arguments to the
/// caller then.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "util/heap.h"
#include "util/slist.h"

enum ZEMAD_Type : std::uint32_t {
  ZEMAD_TYPE_STRING = 1,
  ZEMAD_TYPE_INT = 2,
  ZEMAD_TYPE_UINT = 3,
  ZEMAD_TYPE_NULL = 4,
};

struct AttributeEntry {
  std::uint32_t Type;    ///< ZEMAD_Type
  std::uint32_t Length;  ///< bytes of the value: text length + 1, 4 for integers, 0 for null
  void* Value;           ///< NUL-terminated text, or one 32-bit integer; null for null
};

struct Attribute {
  AttributeEntry* Name;   ///< mandatory
  AttributeEntry* Key;    ///< may be null
  AttributeEntry* Value;  ///< may be null
};

struct MapEntry {
  char* Name;   ///< slot name, mandatory
  char* Value;  ///< slot text, mandatory
};

/// Finds the event's attribute of an ATTR test; borrowed.
using ZEMAD_FindRoutine = Attribute* (*)(int operator_code, int index);
/// The operand of a KEY or VALUE test; borrowed.
using ZEMAD_GetRoutine = AttributeEntry* (*)(int index);
/// A FETCH function or operand, and a MAP variable: a new entry owned by the caller, or null. For
/// an operand `number` is its index, `count` 0 and `arguments` null.
using ZEMAD_EvalRoutine = AttributeEntry* (*)(int number, int count, SL_List* arguments);

struct SelectOperation {
  int Operator;  ///< operator code of the class language, 1 to 10
  union {
    ZEMAD_FindRoutine Find;  ///< in an ATTR test
    ZEMAD_GetRoutine Get;    ///< in a KEY or VALUE test
  };
  int Index;  ///< the operand's index
};

struct Select {
  SelectOperation* Attr;
  SelectOperation* Key;    ///< null when not tested
  SelectOperation* Value;  ///< null when not tested
};

struct Expression {
  ZEMAD_EvalRoutine Routine;  ///< null for a fetch result named inside FETCH
  int Number;                 ///< an operand's index; a function's argument count
  SL_List* Arguments;         ///< of Expression; null for a leaf
};

struct Fetch {
  Expression* Expr;
};

struct Variable {
  ZEMAD_EvalRoutine Routine;
  int Index;
};

struct Map {
  char* SlotName;
  char* Format;        ///< null for a plain assignment
  SL_List* Variables;  ///< of Variable
};

struct Config {
  char* ClassName;      ///< null stands for the class "*DISCARD*"
  SL_List* SelectList;  ///< of Select, or null
  SL_List* FetchList;   ///< of Fetch, or null
  SL_List* MapList;     ///< of Map, or null
};

// Makers ------------------------------------------------------------------------------------------

/// Takes `value` over; null is accepted only with length 0.
AttributeEntry* ZEMAD_MakeAttributeEntry(std::uint32_t type, std::uint32_t length, void* value);
AttributeEntry* ZEMAD_MakeNullAttributeEntry();
/// Both keep the low 32 bits, and both make a signed entry. Deliberate: unsigned entries are stored
/// and printed as signed.
AttributeEntry* ZEMAD_MakeIntAttributeEntry(long number);
AttributeEntry* ZEMAD_MakeUIntAttributeEntry(unsigned long number);
/// Copies the text.
AttributeEntry* ZEMAD_MakeStringAttributeEntry(const char* text);
/// Takes the three entries over; `name` is mandatory.
Attribute* ZEMAD_MakeAttribute(AttributeEntry* name, AttributeEntry* key, AttributeEntry* value);
/// Takes both strings over (from util/heap.h); both are mandatory.
MapEntry* ZEMAD_MakeMapEntry(char* name, char* value);

// Copies (deep) -----------------------------------------------------------------------------------

AttributeEntry* ZEMAD_CopyAttributeEntry(const AttributeEntry* entry);
Attribute* ZEMAD_CopyAttribute(const Attribute* attribute);

// Comparison and conversion -----------------------------------------------------------------------

/// 1 when both names are present and equal, else 0. Match callback.
int ZEMAD_CompareMapEntryByName(const void* a, const void* b);
/// The value as text: the text itself, or a number in one static buffer that the next call
/// overwrites; null for a null entry, type 4 and unknown types.
const char* ZEMAD_AttributeEntryValueToString(const AttributeEntry* entry);
/// Match callbacks of the constant list: `key` is a text, or the address of a 32-bit integer.
int ZEMAD_EqualString(const void* entry, const void* text);
int ZEMAD_EqualInt(const void* entry, const void* number);

// Printers ----------------------------------------------------------------------------------------

/// Where the printers write; they do nothing while it is null.
extern std::FILE* ZEMAD_PrintFileDescr;

// All are SL_Walk callbacks: they take the position and return 1.
int ZEMAD_PrintAttributeEntry(void* entry, int position);
int ZEMAD_PrintAttribute(void* attribute, int position);
int ZEMAD_PrintMapEntry(void* entry, int position);
int ZEMAD_PrintConfig(void* config, int position);
int ZEMAD_PrintSelect(void* select, int position);
int ZEMAD_PrintSelectOperation(void* operation, int position);
int ZEMAD_PrintFetch(void* fetch, int position);
int ZEMAD_PrintExpression(void* expression, int position);
int ZEMAD_PrintMap(void* map, int position);
int ZEMAD_PrintVariable(void* variable, int position);

// Releasers (all accept null) ---------------------------------------------------------------------

void ZEMAD_FreeAttributeEntry(AttributeEntry* entry);
void ZEMAD_FreeAttribute(Attribute* attribute);
void ZEMAD_FreeMapEntry(MapEntry* entry);
void ZEMAD_FreeConfig(Config* config);
void ZEMAD_FreeSelect(Select* select);
void ZEMAD_FreeSelectOperation(SelectOperation* operation);
void ZEMAD_FreeFetch(Fetch* fetch);
void ZEMAD_FreeExpression(Expression* expression);
void ZEMAD_FreeMap(Map* map);
void ZEMAD_FreeVariable(Variable* variable);
/// Frees `memory`; with a UTILS VERBOSE destination it traces the address.
void ZEMAD_FreePtr(void* memory);
/// Frees nothing: for lists that do not own their elements.
void ZEMAD_FreeNo(void* memory);

namespace zem::kernel {

using AttributeEntryPtr = std::unique_ptr<AttributeEntry, util::FreeWith<ZEMAD_FreeAttributeEntry>>;
using AttributePtr = std::unique_ptr<Attribute, util::FreeWith<ZEMAD_FreeAttribute>>;
using MapEntryPtr = std::unique_ptr<MapEntry, util::FreeWith<ZEMAD_FreeMapEntry>>;

}  // namespace zem::kernel
