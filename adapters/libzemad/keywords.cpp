/// Two attributes with name, key and value (severity, k1, WARNING) and (msg, k2, disk full) give
/// the varbind text
///
///   [(severity, k1, WARNING),(msg, k2, disk full)]
#include "adapters/libzemad/keywords.h"

#include <array>
#include <string>
#include <string_view>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/error.h"

namespace {

using zem::kernel::AttributeEntryPtr;
using zem::kernel::is_text;
using zem::kernel::text_of;

constexpr zem::log::Source kSource{zem::log::kDriver, "driver"};

constexpr std::array<const char*, ZEMAD_max_keywords> kKeywordNames = {""};
constexpr int kVarbindKeyword = 0;
constexpr std::size_t kVarbindBytesMax = 4095;

struct KeywordTable {
  std::array<AttributeEntryPtr, ZEMAD_max_keywords> names;
  std::array<AttributeEntryPtr, ZEMAD_max_keywords> keys;
  std::array<Attribute, ZEMAD_max_keywords> rows{};  ///< borrow from the two above and the event
  std::span<AttributeEntry*> values;                 ///< of the current event; empty without one
};
KeywordTable table;

std::string varbind_text;

bool is_in_table(int index) { return index >= 0 && index < ZEMAD_max_keywords; }

/// Empty for a part without a text form.
std::string_view shown(const AttributeEntry* entry) {
  const char* text = ZEMAD_AttributeEntryValueToString(entry);
  return text == nullptr ? std::string_view() : std::string_view(text);
}

void build_varbind_text() {
  varbind_text.assign(1, '[');
  SL_Walk(ZEMAD_attribute_list, ZEMAD_BuildVarbindKeyword);
  if (varbind_text.size() > 1) varbind_text.back() = ']';
}

/// The event owns the text from here on.
void bind_varbind_text() {
  build_varbind_text();
  AttributeEntry*& value = table.values[kVarbindKeyword];
  value = ZEMAD_MakeStringAttributeEntry(varbind_text.c_str());
  table.rows[kVarbindKeyword].Value = value;
}

using NameCheck = int (*)(const Attribute*, const char*);

NameCheck check_of(int mode) {
  switch (mode) {
    case 1:
      return ZEMAD_DrvCheckEqualAttribute;
    case 2:
      return ZEMAD_DrvCheckBeginAttribute;
    case 3:
      return ZEMAD_DrvCheckEndAttribute;
    default:
      return nullptr;
  }
}

}  // namespace

namespace zem::kernel {

bool make_keyword_table() {
  table = KeywordTable();
  for (std::size_t i = 0; i < kKeywordNames.size(); ++i) {
    table.names[i].reset(ZEMAD_MakeStringAttributeEntry(kKeywordNames[i]));
    table.keys[i].reset(ZEMAD_MakeNullAttributeEntry());
    if (!table.names[i] || !table.keys[i]) return false;
    table.rows[i] = {table.names[i].get(), table.keys[i].get(), nullptr};
  }
  return true;
}

void bind_keywords(std::span<AttributeEntry*> values) {
  table.values = values;
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    const bool needs_text = !values.empty() && i != kVarbindKeyword && values[i] == nullptr;
    if (needs_text) values[i] = ZEMAD_MakeStringAttributeEntry("");
    table.rows[i].Value = values.empty() ? nullptr : values[i];
  }
}

}  // namespace zem::kernel

int ZEMAD_GetKeywordIndex(const char* name) {
  if (name == nullptr) return -1;
  for (int i = 0; i < ZEMAD_max_keywords; ++i) {
    if (std::string_view(name) == kKeywordNames[static_cast<std::size_t>(i)]) return i;
  }
  return -1;
}

Attribute* ZEMAD_KeywordRow(int index) {
  return is_in_table(index) ? &table.rows[static_cast<std::size_t>(index)] : nullptr;
}

Attribute* ZEMAD_GetAttributeByKeyword(int index) {
  Attribute* row = ZEMAD_KeywordRow(index);
  if (row == nullptr) {
    zem::log::report(kSource, zem::log::kMinor, 1, "Invalid keyword index\n");
    return nullptr;
  }
  if (index == kVarbindKeyword && row->Value == nullptr && !table.values.empty()) {
    bind_varbind_text();
  }
  return row;
}

int ZEMAD_BuildVarbindKeyword(void* attribute, int /*position*/) {
  const Attribute& part = *static_cast<const Attribute*>(attribute);
  std::string piece(1, '(');
  piece.append(shown(part.Name)).append(", ");
  piece.append(shown(part.Key)).append(", ");
  piece.append(shown(part.Value)).append("),");
  if (varbind_text.size() + piece.size() <= kVarbindBytesMax) varbind_text += piece;
  return 1;
}

Attribute* ZEMAD_GetAttributeByName(int mode, const AttributeEntry* entry) {
  const NameCheck holds = check_of(mode);
  if (holds == nullptr || !is_text(entry) || entry->Value == nullptr) return nullptr;
  const char* text = static_cast<const char*>(entry->Value);
  for (Attribute* attribute : zem::util::sl_items<Attribute>(ZEMAD_attribute_list)) {
    if (holds(attribute, text) == 1) return attribute;
  }
  for (Attribute& row : table.rows) {
    if (holds(&row, text) == 1) return &row;
  }
  return nullptr;
}

int ZEMAD_DrvCheckEqualAttribute(const Attribute* attribute, const char* text) {
  return is_text(attribute->Name) && text_of(*attribute->Name) == text ? 1 : 0;
}

int ZEMAD_DrvCheckBeginAttribute(const Attribute* attribute, const char* text) {
  return is_text(attribute->Name) && text_of(*attribute->Name).starts_with(text) ? 1 : 0;
}

int ZEMAD_DrvCheckEndAttribute(const Attribute* attribute, const char* text) {
  return is_text(attribute->Name) && text_of(*attribute->Name).ends_with(text) ? 1 : 0;
}
