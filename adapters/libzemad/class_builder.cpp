/// Every function wraps what it is handed into an owner first, so that each way out frees what was
/// not passed on. Messages name the token that the scanner returned last; a few of them are spelled
/// oddly, and sites look for them as they are.
#include "adapters/libzemad/class_builder.h"

#include <limits>
#include <memory>

#include "adapters/libzemad/class_scanner.h"
#include "adapters/libzemad/error.h"
#include "util/heap.h"
#include "util/slist.h"
#include "util/text.h"

namespace zem::kernel {

namespace {

using util::format_text;
using util::FreeWith;
using util::HeapText;
using util::SlListOf;

constexpr log::Source kSource{log::kParser, "parse"};

constexpr int kOperatorEqual = 1;
constexpr std::size_t kFileNameBytesMax = 1023;

constexpr char kCreateFailure[] = "SL_Create config error";
constexpr char kInsertFailure[] = "SL_InsLast config error";

template <auto Free, class Record>
std::unique_ptr<Record, FreeWith<Free>> own(Record* record) {
  return std::unique_ptr<Record, FreeWith<Free>>(record);
}

template <auto Free>
void free_list(SL_List*& list) {
  SL_DelAll(list, util::sl_free<Free>);
  list = nullptr;
}

template <auto Free>
void free_if_empty(SL_List*& list) {
  if (SL_NbrElm(list) == 0) free_list<Free>(list);
}

}  // namespace

ClassBuilder::ClassBuilder(const ClassScanner& scanner, std::string_view file_name)
    : scanner_(scanner), file_name_(file_name.substr(0, kFileNameBytesMax)) {}

// Reports -----------------------------------------------------------------------------------------

void ClassBuilder::yyerror(const char* message) {
  parse_errors_ = kSyntaxError;
  const std::string text =
      format_text("Parser %s:%s on line %d current keyword \"%s\"\n", file_name_.c_str(), message,
                  scanner_.line(), scanner_.text());
  log::report(kSource, log::kMajor, parse_errors_, text.c_str());
}

bool ClassBuilder::zemad_check_number(int given, int expected) {
  if (given == expected) return true;
  parse_errors_ = kBadNumber;
  const std::string text =
      format_text("Parser %s: line numbering faulty on line %d, %d must be used instead of %d",
                  file_name_.c_str(), scanner_.line(), expected, given);
  log::report(kSource, log::kMinor, parse_errors_, text.c_str());
  return false;
}

bool ClassBuilder::zemad_check_access(int index, int count) {
  if (index >= 0 && index < count) return true;
  parse_errors_ = kBadReference;
  const std::string text = format_text(
      "Parser %s: impossible variable reference on line %d current keyword \"%s\", index %d",
      file_name_.c_str(), scanner_.line(), scanner_.text(), index);
  log::report(kSource, log::kMajor, parse_errors_, text.c_str());
  return false;
}

// Lists -------------------------------------------------------------------------------------------

template <auto Free, class Record>
SL_List* ClassBuilder::append(SL_List* list, Record* element, const char* creation_failure) {
  auto owned = own<Free>(element);
  SlListOf<Free> grown(list != nullptr ? list : SL_Create());
  if (!grown) {
    yyerror(creation_failure);
    return nullptr;
  }
  if (SL_InsLast(grown.get(), element) == 0) {
    yyerror(kInsertFailure);
    return nullptr;
  }
  static_cast<void>(owned.release());
  return grown.release();
}

template <auto Free, class Record>
bool ClassBuilder::append_to_global(SL_List* list, Record* element) {
  auto owned = own<Free>(element);
  if (SL_InsLast(list, element) == 0) {
    yyerror(kInsertFailure);
    return false;
  }
  static_cast<void>(owned.release());
  return true;
}

// The file ----------------------------------------------------------------------------------------

bool ClassBuilder::begin_file() {
  free_list<ZEMAD_FreeConfig>(ZEMAD_ConfigurationList);
  free_list<ZEMAD_FreeMap>(ZEMAD_DefaultMapList);
  ZEMAD_ConfigurationList = SL_Create();
  ZEMAD_DefaultMapList = SL_Create();
  if (ZEMAD_ConfigurationList != nullptr && ZEMAD_DefaultMapList != nullptr) return true;
  yyerror(kCreateFailure);
  return false;
}

void ClassBuilder::empty_file() {
  free_list<ZEMAD_FreeConfig>(ZEMAD_ConfigurationList);
  free_list<ZEMAD_FreeAttributeEntry>(ZEMAD_ConstantList);
  free_list<ZEMAD_FreeMap>(ZEMAD_DefaultMapList);
}

void ClassBuilder::end_file() {
  free_if_empty<ZEMAD_FreeConfig>(ZEMAD_ConfigurationList);
  free_if_empty<ZEMAD_FreeAttributeEntry>(ZEMAD_ConstantList);
  free_if_empty<ZEMAD_FreeMap>(ZEMAD_DefaultMapList);
}

// Statements --------------------------------------------------------------------------------------

void ClassBuilder::begin_class() {
  attr_last_pos_ = 0;
  fetch_last_pos_ = 0;
}

Config* ClassBuilder::make_class(char* name, SL_List* selects, SL_List* fetches, SL_List* maps) {
  auto owned_name = own<ZEMAD_FreePtr>(name);
  SlListOf<ZEMAD_FreeSelect> owned_selects(selects);
  SlListOf<ZEMAD_FreeFetch> owned_fetches(fetches);
  SlListOf<ZEMAD_FreeMap> owned_maps(maps);
  Config* config = ZEMAD_CreateClass(name, selects, fetches, maps);
  if (config == nullptr) {
    yyerror("ZEMAD_CreateClass config error");
    return nullptr;
  }
  static_cast<void>(owned_name.release());
  static_cast<void>(owned_selects.release());
  static_cast<void>(owned_fetches.release());
  static_cast<void>(owned_maps.release());
  return config;
}

bool ClassBuilder::add_class(Config* config) {
  return config == nullptr || append_to_global<ZEMAD_FreeConfig>(ZEMAD_ConfigurationList, config);
}

bool ClassBuilder::add_default(Map* map) {
  return append_to_global<ZEMAD_FreeMap>(ZEMAD_DefaultMapList, map);
}

// SELECT ------------------------------------------------------------------------------------------

SelectOperation* ClassBuilder::checked(SelectOperation* operation, const char* message) {
  if (operation == nullptr) yyerror(message);
  return operation;
}

SelectOperation* ClassBuilder::attr_test(int operator_code, const Operand& operand) {
  return checked(ZEMAD_CreateSelectOperation(
                     operator_code, ZEMAD_GetOperatorAttrName(operand.access), operand.index),
                 "CreateSelectOperation config error");
}

SelectOperation* ClassBuilder::entry_test(int operator_code, const Operand& operand) {
  return checked(ZEMAD_CreateSelectOperation(operator_code, ZEMAD_GetOperatorAttr(operand.access),
                                             operand.index),
                 "CreateSelectOperation config error");
}

Select* ClassBuilder::select(int number, SelectOperation* attr, SelectOperation* key,
                             SelectOperation* value) {
  auto owned_attr = own<ZEMAD_FreeSelectOperation>(attr);
  auto owned_key = own<ZEMAD_FreeSelectOperation>(key);
  auto owned_value = own<ZEMAD_FreeSelectOperation>(value);
  if (!zemad_check_number(number, attr_last_pos_ + 1)) return nullptr;
  Select* select = ZEMAD_CreateSelect(number, attr, key, value);
  if (select == nullptr) {
    yyerror("ZEMAD_CreateSelect config error");
    return nullptr;
  }
  for (auto* owned : {&owned_attr, &owned_key, &owned_value}) static_cast<void>(owned->release());
  return select;
}

Select* ClassBuilder::short_select(int number, const Operand& first, const Operand& second) {
  auto attr = own<ZEMAD_FreeSelectOperation>(
      checked(ZEMAD_CreateSelectOperation(kOperatorEqual, ZEMAD_GetOperatorAttrName(first.access),
                                          first.index),
              "ZEMAD_CreateSelectOperation config error"));
  if (!attr) return nullptr;
  SelectOperation* value =
      checked(ZEMAD_CreateSelectOperation(kOperatorEqual, ZEMAD_GetOperatorAttr(second.access),
                                          second.index),
              "ZEMAD_CreateSelectOperationconfig error");
  return value == nullptr ? nullptr : select(number, attr.release(), nullptr, value);
}

SL_List* ClassBuilder::add_select(SL_List* selects, Select* select) {
  SL_List* grown = append<ZEMAD_FreeSelect>(selects, select, "SL_Createconfig error");
  attr_last_pos_ = SL_NbrElm(grown);
  return grown;
}

// FETCH -------------------------------------------------------------------------------------------

Expression* ClassBuilder::leaf(const Operand& operand) {
  Expression* expression =
      ZEMAD_CreateFetchArg(ZEMAD_GetOperatorFetch(operand.access), operand.index, nullptr);
  if (expression == nullptr) yyerror("ZEMAD_CreateFetchArg config error");
  return expression;
}

Expression* ClassBuilder::call(ZEMAD_EvalRoutine routine,
                               std::initializer_list<Expression*> arguments) {
  SlListOf<ZEMAD_FreeExpression> list;
  bool is_whole = true;
  for (Expression* argument : arguments) {
    auto owned = own<ZEMAD_FreeExpression>(argument);
    if (!is_whole) continue;
    list.reset(append<ZEMAD_FreeExpression>(list.release(), owned.release(), kCreateFailure));
    is_whole = list != nullptr;
  }
  if (!is_whole) return nullptr;
  Expression* expression =
      ZEMAD_CreateFetchArg(routine, static_cast<int>(arguments.size()), list.get());
  if (expression == nullptr) {
    yyerror("ZEMAD_CreateFetchArg config error");
    return nullptr;
  }
  static_cast<void>(list.release());
  return expression;
}

Fetch* ClassBuilder::fetch(int number, Expression* expression) {
  auto owned = own<ZEMAD_FreeExpression>(expression);
  if (!zemad_check_number(number, fetch_last_pos_ + 1)) return nullptr;
  Fetch* fetch = ZEMAD_CreateFetch(number, expression);
  if (fetch == nullptr) {
    yyerror("ZEMAD_CreateFetch config error");
    return nullptr;
  }
  static_cast<void>(owned.release());
  return fetch;
}

SL_List* ClassBuilder::add_fetch(SL_List* fetches, Fetch* fetch) {
  SL_List* grown = append<ZEMAD_FreeFetch>(fetches, fetch, kCreateFailure);
  fetch_last_pos_ = SL_NbrElm(grown);
  return grown;
}

// MAP ---------------------------------------------------------------------------------------------

Variable* ClassBuilder::variable(const Operand& operand) {
  Variable* variable = ZEMAD_CreateVariable(ZEMAD_GetOperator(operand.access), operand.index);
  if (variable == nullptr) yyerror("ZEMAD_CreateVariable config error");
  return variable;
}

SL_List* ClassBuilder::add_variable(SL_List* variables, Variable* variable) {
  return append<ZEMAD_FreeVariable>(variables, variable, kCreateFailure);
}

/// The list of a plain line, of which a file has tens of thousands: it takes no room for more.
SL_List* ClassBuilder::only(Variable* variable) {
  auto owned = own<ZEMAD_FreeVariable>(variable);
  SlListOf<ZEMAD_FreeVariable> list(SL_Create());
  if (!list) {
    yyerror(kCreateFailure);
    return nullptr;
  }
  if (!util::sl_reserve(*list, 1)) {
    yyerror(kInsertFailure);
    return nullptr;
  }
  return append<ZEMAD_FreeVariable>(list.release(), owned.release(), kCreateFailure);
}

/// Deliberate: a plain line of a class blames the list for it
/// (ClassBuilder/ClassBuilderFailures: PlainLineOfAClass).
Map* ClassBuilder::assignment(char* slot_name, Variable* variable) {
  return assign(slot_name, variable, kInsertFailure);
}

Map* ClassBuilder::default_assignment(char* slot_name, Variable* variable) {
  return assign(slot_name, variable, "ZEMAD_CreateMap config error");
}

Map* ClassBuilder::assign(char* slot_name, Variable* variable, const char* failure) {
  auto owned_name = own<ZEMAD_FreePtr>(slot_name);
  SL_List* variables = only(variable);
  if (variables == nullptr) return nullptr;
  return make_map(static_cast<char*>(owned_name.release()), nullptr, variables, failure);
}

Map* ClassBuilder::printf(char* slot_name, char* format, SL_List* variables) {
  return make_map(slot_name, format, variables, "ZEMAD_CreateMap config error");
}

Map* ClassBuilder::make_map(char* slot_name, char* format, SL_List* variables,
                            const char* failure) {
  auto owned_name = own<ZEMAD_FreePtr>(slot_name);
  auto owned_format = own<ZEMAD_FreePtr>(format);
  SlListOf<ZEMAD_FreeVariable> owned_variables(variables);
  Map* map = ZEMAD_CreateMap(slot_name, format, variables);
  if (map == nullptr) {
    yyerror(failure);
    return nullptr;
  }
  static_cast<void>(owned_name.release());
  static_cast<void>(owned_format.release());
  static_cast<void>(owned_variables.release());
  return map;
}

SL_List* ClassBuilder::add_map(SL_List* maps, Map* map) {
  return append<ZEMAD_FreeMap>(maps, map, kCreateFailure);
}

// Words -------------------------------------------------------------------------------------------

char* ClassBuilder::copy(std::string_view text) {
  char* copy = util::duplicate(text);
  if (copy == nullptr) yyerror("strdup config error");
  return copy;
}

bool ClassBuilder::constant(std::string_view text, Operand& operand) {
  return constant_at(add_constant(text), operand);
}

bool ClassBuilder::constant(int number, Operand& operand) {
  return constant_at(ZEMAD_AddConstantInt(number), operand);
}

bool ClassBuilder::constant_at(int index, Operand& operand) {
  operand = Operand{ZEMAD_ACCESS_CONSTANT, index};
  if (index < 0) yyerror(kInsertFailure);
  return index >= 0;
}

bool ClassBuilder::attr_reference(ZEMAD_Access access, int number, Operand& operand) {
  return reference(access, number, attr_last_pos_, operand);
}

bool ClassBuilder::fetch_reference(int number, Operand& operand) {
  return reference(ZEMAD_ACCESS_FETCH, number, fetch_last_pos_, operand);
}

bool ClassBuilder::reference(ZEMAD_Access access, int number, int count, Operand& operand) {
  constexpr int kLowest = std::numeric_limits<int>::min();
  operand = Operand{access, number == kLowest ? kLowest : number - 1};
  return zemad_check_access(operand.index, count);
}

}  // namespace zem::kernel
