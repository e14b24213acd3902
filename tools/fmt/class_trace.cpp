// SELECT items hold one after another, so the first k of them hold when the kernel says so of a
// list that is cut behind item k. The lists that it fills on the way are what the next item's
// references name.
#include "tools/fmt/class_trace.h"

#include <utility>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/fetch.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/select.h"

namespace zem::fmt {
namespace {

std::string text_of(const AttributeEntry* entry) {
  const char* text = entry == nullptr ? nullptr : ZEMAD_AttributeEntryValueToString(entry);
  return text == nullptr ? "" : text;
}

/// The first `count` elements; borrows them.
SL_List first_of(const SL_List& list, int count) { return {list.items, count, count}; }

bool holds_up_to(const SL_List& selects, int count) {
  ZEMAD_KernelSelectCleanup();
  const SL_List first = first_of(selects, count);
  return count == 0 || ZEMAD_EvalSelect(&first) == 1;
}

std::string operand_text(const SelectOperation& operation) {
  return operation.Get == nullptr ? "" : text_of(operation.Get(operation.Index));
}

bool key_fails(const SelectOperation& key, const Attribute& attribute) {
  const AttributeEntry* operand = key.Get == nullptr ? nullptr : key.Get(key.Index);
  return ZEMAD_TestSelectKey(key.Operator, attribute.Key, operand) != 1;
}

/// Why item `item` of the list fails, all before it holding.
ItemFailure failure_of(const SL_List& selects, int item) {
  (void)holds_up_to(selects, item);
  ItemFailure failure{static_cast<std::size_t>(item), ItemOutcome::kNoSlot, "", "", ""};
  const auto& select = *static_cast<const Select*>(selects.items[item]);
  const Attribute* attribute = select.Attr->Find == nullptr
                                   ? nullptr
                                   : select.Attr->Find(select.Attr->Operator, select.Attr->Index);
  if (attribute == nullptr) return failure;
  failure.slot = text_of(attribute->Name);
  const bool is_key = select.Key != nullptr && key_fails(*select.Key, *attribute);
  failure.outcome = is_key ? ItemOutcome::kKeyFails : ItemOutcome::kValueFails;
  failure.value = text_of(is_key ? attribute->Key : attribute->Value);
  const SelectOperation* test = is_key ? select.Key : select.Value;
  if (test != nullptr) failure.operand = operand_text(*test);
  return failure;
}

ClassTrial try_class(const Config& config) {
  ClassTrial trial;
  if (SL_NbrElm(config.SelectList) == 0) return trial;
  const SL_List& selects = *config.SelectList;
  for (int item = 0; item < selects.count; ++item) {
    if (holds_up_to(selects, item + 1)) continue;
    trial.failure = failure_of(selects, item);
    return trial;
  }
  trial.is_selected = true;
  return trial;
}

}  // namespace

std::vector<ClassTrial> try_classes() {
  std::vector<ClassTrial> trials;
  for (const Config* config : util::sl_items<Config>(ZEMAD_ConfigurationList)) {
    trials.push_back(try_class(*config));
    if (trials.back().is_selected) break;
  }
  return trials;
}

Captures selected_slots() {
  Captures slots;
  for (int i = 0; i < SL_NbrElm(ZEMAD_NameAttrList); ++i) {
    slots.emplace_back(
        text_of(static_cast<const AttributeEntry*>(SL_GetPos(ZEMAD_NameAttrList, i))),
        text_of(static_cast<const AttributeEntry*>(SL_GetPos(ZEMAD_ValueAttrList, i))));
  }
  return slots;
}

FetchResults fetch_results(const Config& selected) {
  FetchResults results;
  for (int count = 1; count <= SL_NbrElm(selected.FetchList); ++count) {
    SL_DelAll(std::exchange(ZEMAD_FetchList, nullptr), util::sl_free<ZEMAD_FreeAttributeEntry>);
    const SL_List first = first_of(*selected.FetchList, count);
    results.has_failed = ZEMAD_EvalFetch(&first) != 1;
    if (results.has_failed) break;
    results.values.push_back(
        text_of(static_cast<const AttributeEntry*>(SL_GetPos(ZEMAD_FetchList, count - 1))));
  }
  return results;
}

}  // namespace zem::fmt
