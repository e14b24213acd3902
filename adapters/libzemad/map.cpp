#include "adapters/libzemad/map.h"

#include <string>

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/kernel.h"

namespace {

using zem::kernel::AttributeEntryPtr;
using zem::kernel::MapEntryPtr;
using zem::util::HeapText;
using EntryList = zem::util::SlListOf<ZEMAD_FreeAttributeEntry>;

constexpr zem::log::Source kSource{zem::log::kMap, "map"};
constexpr int kNoVariable = 10;
constexpr int kNoSlot = 11;
constexpr int kNotAppended = 21;
constexpr int kMissing = 22;
constexpr int kNotCreated = 23;
constexpr int kNotFormatted = 51;
constexpr int kNoMemory = 99;

bool fail(int number, const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, number, text);
  return false;
}

void trace(const char* text) { zem::log::trace(kSource, text, zem::log::kNormal); }

// One slot ----------------------------------------------------------------------------------------

bool evaluate_variable(const Variable* variable, SL_List* values) {
  if (variable == nullptr) return fail(kMissing, "List failure");
  AttributeEntryPtr value(
      variable->Routine == nullptr ? nullptr : variable->Routine(variable->Index, 0, nullptr));
  if (!value) return fail(kNoVariable, "Variable failure");
  if (SL_InsLast(values, value.get()) != 1) return fail(kNotAppended, "List failure");
  static_cast<void>(value.release());  // the list owns it now
  return true;
}

/// The values in the order of the variables; null when one failed.
EntryList evaluate_variables(const SL_List* variables) {
  EntryList values(SL_Create());
  if (!values) fail(kNotCreated, "List failure");
  if (!values) return nullptr;
  for (const Variable* variable : zem::util::sl_items<Variable>(variables)) {
    if (!evaluate_variable(variable, values.get())) return nullptr;
  }
  return values;
}

HeapText copy_name(const char* name) {
  HeapText copy(name == nullptr ? nullptr : zem::util::duplicate(name));
  if (!copy) {
    zem::log::trace(kSource, "StrDup failure");
    zem::log::report(kSource, zem::log::kMajor, kNoMemory, "Malloc failure");
  }
  return copy;
}

/// The slot takes over what it was made of, if it could be made.
MapEntry* make_slot(HeapText name, HeapText text) {
  MapEntry* slot = ZEMAD_MakeMapEntry(name.get(), text.get());
  if (slot == nullptr) return nullptr;
  static_cast<void>(name.release());
  static_cast<void>(text.release());
  return slot;
}

// The list of slots -------------------------------------------------------------------------------

void trace_slot(const MapEntry& slot) {
  if (!zem::log::listens(kSource.module, zem::log::kLow)) return;
  const std::string text =
      "Selected Map : <" + std::string(slot.Name) + "> <" + std::string(slot.Value) + ">";
  zem::log::trace(kSource, text.c_str());
}

/// A slot of the same name gives way: the later line wins.
bool put_slot(MapEntryPtr slot) {
  if (SL_FindReplace(ZEMAD_MapEntryList, slot.get(), ZEMAD_CompareMapEntryByName,
                     zem::util::sl_free<ZEMAD_FreeMapEntry>) == 1) {
    trace("ZEMAD_MapEntryList entry replaced");
  } else if (SL_InsLast(ZEMAD_MapEntryList, slot.get()) == 1) {
    trace("ZEMAD_MapEntryList entry added");
  } else {
    return fail(kNotAppended, "ZEMAD_MapEntryList failure");
  }
  static_cast<void>(slot.release());  // the list owns it now
  return true;
}

bool evaluate_line(const Map* map) {
  if (map == nullptr) return fail(kMissing, "ZEMAD_MapList failure");
  MapEntryPtr slot(ZEMAD_EvalMapFormat(map));
  if (!slot) return fail(kNoSlot, "Calculate Map failure");
  trace_slot(*slot);
  return put_slot(std::move(slot));
}

bool evaluate_lines(const SL_List* maps) {
  if (ZEMAD_MapEntryList == nullptr) ZEMAD_MapEntryList = SL_Create();
  if (ZEMAD_MapEntryList == nullptr) return fail(kNotCreated, "ZEMAD_MapEntryList failure");
  for (const Map* map : zem::util::sl_items<Map>(maps)) {
    if (!evaluate_line(map)) return false;
  }
  return true;
}

}  // namespace

int ZEMAD_EvalMap(const SL_List* maps) {
  trace("Entered Eval_Map");
  bool succeeded = true;
  if (maps == nullptr) {
    zem::log::trace(kSource, "ZEMAD_EvalMap List NULL");
  } else {
    succeeded = evaluate_lines(maps);
  }
  if (!succeeded) {
    SL_DelAll(ZEMAD_MapEntryList, zem::util::sl_free<ZEMAD_FreeMapEntry>);
    ZEMAD_MapEntryList = nullptr;
  }
  trace("Finished Eval_Map");
  return succeeded ? 1 : 0;
}

MapEntry* ZEMAD_EvalMapFormat(const Map* map) {
  trace("Entered Eval_Map_Format");
  if (map->Variables == nullptr) {
    zem::log::trace(kSource, "ZEMAD_EvalMapFormat: VariableList NULL");
    return nullptr;
  }
  const EntryList values = evaluate_variables(map->Variables);
  if (!values) return nullptr;
  HeapText name = copy_name(map->SlotName);
  if (!name) return nullptr;
  HeapText text(ZEMAD_EvalMapPrintf(map->Format, SL_NbrElm(values.get()), values.get()));
  if (!text) {
    fail(kNotFormatted, "ZEMAD_EvalMapPrintf failure");
    return nullptr;
  }
  MapEntry* slot = make_slot(std::move(name), std::move(text));
  trace("Finished Eval_Map_Format");
  return slot;
}
