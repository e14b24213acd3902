/// The constructors of compiled classes: one record each, filled from the arguments in order. They
/// only say that memory is short; what was being built is the parser's to name.
#include <cstring>

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/parse_config.h"
#include "util/heap.h"

namespace {

constexpr zem::log::Source kSource{zem::log::kParser, "parse_config"};

template <class Record>
Record* create(const Record& content) {
  auto* record = static_cast<Record*>(zem::util::allocate(sizeof(Record)));
  if (record == nullptr) {
    zem::log::trace(kSource, "Malloc failure");
  } else {
    *record = content;
  }
  return record;
}

}  // namespace

Config* ZEMAD_CreateClass(char* name, SL_List* selects, SL_List* fetches, SL_List* maps) {
  Config* config = create(Config{name, selects, fetches, maps});
  if (config != nullptr && std::strcmp(name, "*DISCARD*") == 0) {
    ZEMAD_FreePtr(name);
    config->ClassName = nullptr;
  }
  return config;
}

Select* ZEMAD_CreateSelect(int /*number*/, SelectOperation* attr, SelectOperation* key,
                           SelectOperation* value) {
  return create(Select{attr, key, value});
}

SelectOperation* ZEMAD_CreateSelectOperation(int operator_code, ZEMAD_FindRoutine find, int index) {
  return create(SelectOperation{operator_code, {.Find = find}, index});
}

SelectOperation* ZEMAD_CreateSelectOperation(int operator_code, ZEMAD_GetRoutine get, int index) {
  return create(SelectOperation{operator_code, {.Get = get}, index});
}

Fetch* ZEMAD_CreateFetch(int /*number*/, Expression* expression) {
  return create(Fetch{expression});
}

Expression* ZEMAD_CreateFetchArg(ZEMAD_EvalRoutine routine, int number, SL_List* arguments) {
  return create(Expression{routine, number, arguments});
}

Map* ZEMAD_CreateMap(char* slot_name, char* format, SL_List* variables) {
  return create(Map{slot_name, format, variables});
}

Variable* ZEMAD_CreateVariable(ZEMAD_EvalRoutine routine, int index) {
  return create(Variable{routine, index});
}
