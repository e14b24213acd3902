#include "adapters/libzemad/evaluation.h"

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/parse_config.h"
#include "util/text.h"

namespace {

using zem::util::format_text;

constexpr zem::log::Source kSource{zem::log::kKernel, "evaluation"};
constexpr int kMissing = 82;

std::nullptr_t fail(const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, kMissing, text);
  return nullptr;
}

void trace_index(const char* accessor, int index) {
  if (!zem::log::listens(kSource.module, zem::log::kVerbose)) return;
  const std::string text = format_text("%s Index <%u>", accessor, static_cast<unsigned>(index));
  zem::log::trace(kSource, text.c_str(), zem::log::kVerbose);
}

/// Silent when the position is beyond the end; a list that does not exist is reported.
AttributeEntry* entry_of(const char* accessor, const SL_List* list, const char* no_list,
                         int index) {
  trace_index(accessor, index);
  if (list == nullptr) return fail(no_list);
  return static_cast<AttributeEntry*>(SL_GetPos(list, index));
}

AttributeEntry* copy_of(const AttributeEntry* entry, const char* no_entry) {
  if (entry == nullptr) return fail(no_entry);
  return ZEMAD_CopyAttributeEntry(entry);
}

Attribute* attribute_named(int operator_code, const AttributeEntry* entry, const char* no_entry) {
  if (entry == nullptr) return fail(no_entry);
  return ZEMAD_GetAttributeByName(operator_code, entry);
}

}  // namespace

AttributeEntry* ZEMAD_GetGlobalEntry(int index) {
  trace_index("ZEMAD_GetGlobalEntry", index);
  const Attribute* keyword = ZEMAD_GetAttributeByKeyword(index);
  if (keyword == nullptr) return fail("GetAttributeByKeyword NULL failure");
  return keyword->Value;
}

AttributeEntry* ZEMAD_GetConstantEntry(int index) {
  return entry_of("ZEMAD_GetConstantEntry", ZEMAD_ConstantList, "ZEMAD_ConstantList NULL failure",
                  index);
}

AttributeEntry* ZEMAD_GetNameAttrEntry(int index) {
  return entry_of("ZEMAD_GetNameAttrEntry", ZEMAD_NameAttrList, "ZEMAD_NameAttrList NULL failure",
                  index);
}

AttributeEntry* ZEMAD_GetKeyAttrEntry(int index) {
  return entry_of("ZEMAD_GetKeyAttrEntry", ZEMAD_KeyAttrList, "ZEMAD_KeyAttrList NULL failure",
                  index);
}

AttributeEntry* ZEMAD_GetValueAttrEntry(int index) {
  return entry_of("ZEMAD_GetValueAttrEntry", ZEMAD_ValueAttrList,
                  "ZEMAD_ValueAttrList NULL failure", index);
}

AttributeEntry* ZEMAD_GetFetchEntry(int index) {
  return entry_of("ZEMAD_GetFetchEntry", ZEMAD_FetchList, "ZEMAD_FetchList NULL failure", index);
}

AttributeEntry* ZEMAD_EvalGlobalEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetGlobalEntry(index), "ZEMAD_EvalGlobalEntry failure");
}

AttributeEntry* ZEMAD_EvalConstantEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetConstantEntry(index), "ZEMAD_EvalConstantEntry failure");
}

AttributeEntry* ZEMAD_EvalNameAttrEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetNameAttrEntry(index), "ZEMAD_EvalNameAttrEntry failure");
}

AttributeEntry* ZEMAD_EvalKeyAttrEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetKeyAttrEntry(index), "ZEMAD_EvalKeyAttrEntry failure");
}

AttributeEntry* ZEMAD_EvalValueAttrEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetValueAttrEntry(index), "ZEMAD_EvalValueAttrEntry failure");
}

AttributeEntry* ZEMAD_EvalFetchEntry(int index, int /*count*/, SL_List* /*arguments*/) {
  return copy_of(ZEMAD_GetFetchEntry(index), "ZEMAD_EvalFetchEntry failure");
}

Attribute* ZEMAD_GetAttributeGlobal(int /*operator_code*/, int index) {
  return ZEMAD_GetAttributeByKeyword(index);
}

Attribute* ZEMAD_GetAttributeConstant(int operator_code, int index) {
  return attribute_named(operator_code, ZEMAD_GetConstantEntry(index),
                         "ZEMAD_GetAttributeConstant failure");
}

Attribute* ZEMAD_GetAttributeNameAttr(int operator_code, int index) {
  return attribute_named(operator_code, ZEMAD_GetNameAttrEntry(index),
                         "ZEMAD_GetAttributeNameAttr failure");
}

Attribute* ZEMAD_GetAttributeKeyAttr(int operator_code, int index) {
  return attribute_named(operator_code, ZEMAD_GetKeyAttrEntry(index),
                         "ZEMAD_GetAttributeKeyAttr failure");
}

Attribute* ZEMAD_GetAttributeValueAttr(int operator_code, int index) {
  return attribute_named(operator_code, ZEMAD_GetValueAttrEntry(index),
                         "ZEMAD_GetAttributeValueAttr failure");
}
