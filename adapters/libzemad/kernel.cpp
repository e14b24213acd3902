/// One event's way through the kernel: the classes are tried in file order, the first whose SELECT
/// clause holds decides, and only for that one FETCH and MAP are evaluated. Classes that would turn
/// the event away for its id are left out (class_index.h) while nobody listens to them being tried.
#include "adapters/libzemad/kernel.h"

#include <optional>
#include <string>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/fetch.h"
#include "adapters/libzemad/map.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/record_dump.h"
#include "adapters/libzemad/select.h"

SL_List* ZEMAD_NameAttrList = nullptr;
SL_List* ZEMAD_KeyAttrList = nullptr;
SL_List* ZEMAD_ValueAttrList = nullptr;
SL_List* ZEMAD_FetchList = nullptr;
SL_List* ZEMAD_MapEntryList = nullptr;

namespace {

using zem::kernel::ClassIndex;
using zem::kernel::RecordDump;

constexpr zem::log::Source kSource{zem::log::kKernel, "kernel"};
constexpr int kNoClass = 22;
constexpr char kDiscard[] = "*DISCARD*";

void drop_list(SL_List*& list, SL_Free free_element) {
  SL_DelAll(list, free_element);
  list = nullptr;
}

void drop_map_entries() { drop_list(ZEMAD_MapEntryList, zem::util::sl_free<ZEMAD_FreeMapEntry>); }

const char* shown_name(const Config& config) {
  return config.ClassName == nullptr ? kDiscard : config.ClassName;
}

bool is_selected(const Config& config) {
  ZEMAD_KernelSelectCleanup();
  if (const RecordDump dump(kSource.module, zem::log::kNormal); dump) {
    dump.write("Trying Class \"");
    dump.write(shown_name(config));
    dump.write("\"\n");
  }
  return ZEMAD_EvalSelect(config.SelectList) == 1;
}

// The search --------------------------------------------------------------------------------------

/// What came of a search: the class, none, or a list that is damaged.
struct Found {
  const Config* config = nullptr;
  bool is_damaged = false;
};

Found damaged() {
  zem::log::fail(kSource, zem::log::kMajor, kNoClass, "List failure");
  return {nullptr, true};
}

/// Every class in its turn: what the shorter search is measured against.
Found search_all() {
  for (const Config* config : zem::util::sl_items<Config>(ZEMAD_ConfigurationList)) {
    if (config == nullptr) return damaged();
    if (is_selected(*config)) return {config};
  }
  return {};
}

Found search_among(ClassIndex::Candidates candidates) {
  ZEMAD_KernelSelectCleanup();
  for (auto at = candidates.next(); at != ClassIndex::kEnd; at = candidates.next()) {
    const auto* config =
        static_cast<const Config*>(SL_GetPos(ZEMAD_ConfigurationList, static_cast<int>(at)));
    if (config == nullptr) return damaged();
    if (is_selected(*config)) return {config};
  }
  return {};
}

/// Every class that is tried tells these so.
bool is_search_traced() {
  using namespace zem::log;
  return listens(kKernel, kNormal) || listens(kKernel, kVerbose) || listens(kSelect, kNormal) ||
         listens(kSelect, kVerbose) || listens(kUtils, kVerbose) || listens(kDriver, kVerbose);
}

const Attribute* first_event_id() {
  for (const auto* attribute : zem::util::sl_items<Attribute>(ZEMAD_attribute_list)) {
    if (ZEMAD_DrvCheckEqualAttribute(attribute, ClassIndex::kEventId.data()) == 1) return attribute;
  }
  return nullptr;
}

/// The classes that do not turn the current event away for its id; nothing when that takes a look
/// at each of them, because an id without a value is an error that every class reports.
std::optional<ClassIndex::Candidates> candidates_in(const ClassIndex& index) {
  const Attribute* id = first_event_id();
  if (id == nullptr) return index.without_id();
  if (id->Value == nullptr) return std::nullopt;
  if (!zem::kernel::is_text(id->Value)) return index.without_id();
  if (id->Value->Value == nullptr) return std::nullopt;
  return index.of(zem::kernel::text_of(*id->Value));
}

Found search() {
  const zem::kernel::CompiledClasses* compiled = zem::kernel::compiled_classes();
  if (compiled == nullptr || is_search_traced()) return search_all();
  const auto candidates = candidates_in(compiled->index());
  return candidates ? search_among(*candidates) : search_all();
}

// The action --------------------------------------------------------------------------------------

void trace_action(const Config& config) {
  if (!zem::log::listens(kSource.module, zem::log::kLow)) return;
  const std::string text = "Found action is <" + std::string(shown_name(config)) + ">";
  zem::log::trace(kSource, text.c_str());
}

/// The defaults come first, so that a class's own line for a slot replaces them.
bool fill_slots(const Config& config) {
  return ZEMAD_EvalFetch(config.FetchList) > 0 && ZEMAD_EvalMap(ZEMAD_DefaultMapList) > 0 &&
         ZEMAD_EvalMap(config.MapList) > 0;
}

/// The name under which the event leaves; null when it is dropped. `config` is null when no class
/// was selected.
const char* act_on(const Config* config) {
  if (config == nullptr) {
    zem::log::trace(kSource, "Default action is <*DISCARD*>");
    return nullptr;
  }
  trace_action(*config);
  if (config->ClassName == nullptr) return nullptr;
  if (fill_slots(*config)) return config->ClassName;
  drop_map_entries();
  return nullptr;
}

void dump_lists() {
  const RecordDump dump(kSource.module, zem::log::kNormal);
  if (!dump) return;
  dump.write_list("ZEMAD_NameAttrList\n\n", ZEMAD_NameAttrList, ZEMAD_PrintAttributeEntry);
  dump.write_list("\nZEMAD_KeyAttrList\n\n", ZEMAD_KeyAttrList, ZEMAD_PrintAttributeEntry);
  dump.write_list("\nZEMAD_ValueAttrList\n\n", ZEMAD_ValueAttrList, ZEMAD_PrintAttributeEntry);
  dump.write_list("\nZEMAD_FetchList\n\n", ZEMAD_FetchList, ZEMAD_PrintAttributeEntry);
  dump.write_list("\nZEMAD_MapEntryList\n\n", ZEMAD_MapEntryList, ZEMAD_PrintMapEntry);
}

}  // namespace

const char* ZEMAD_KernelSelect() {
  zem::log::trace(kSource, "Entered kernel_select", zem::log::kNormal);
  const Found found = search();
  if (found.is_damaged) return nullptr;
  const char* class_name = act_on(found.config);
  dump_lists();
  zem::log::trace(kSource, "Finished kernel_select", zem::log::kNormal);
  return class_name;
}

int ZEMAD_KernelSelectCleanup() {
  drop_list(ZEMAD_NameAttrList, nullptr);
  drop_list(ZEMAD_KeyAttrList, nullptr);
  drop_list(ZEMAD_ValueAttrList, nullptr);
  drop_list(ZEMAD_FetchList, zem::util::sl_free<ZEMAD_FreeAttributeEntry>);
  drop_map_entries();
  return 1;
}
