#include "adapters/libzemad/select.h"

#include <cstring>
#include <string>

#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/record_dump.h"
#include "util/text.h"

namespace {

using zem::kernel::int_of;
using zem::kernel::RecordDump;
using zem::kernel::text_of;
using zem::kernel::word_of;

constexpr zem::log::Source kSource{zem::log::kSelect, "select"};
constexpr int kRefused = 15;
constexpr int kNotAppended = 21;
constexpr int kNotCreated = 23;
constexpr int kNoItems = 24;
constexpr int kNoAttributeTest = 50;
constexpr int kNoOperand = 60;
constexpr int kNoEntry = 82;

bool fail(int number, const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, number, text);
  return false;
}

void trace(const char* text) { zem::log::trace(kSource, text, zem::log::kNormal); }

// The tests ---------------------------------------------------------------------------------------

enum class Verdict { kFails, kHolds, kNoValue, kUnsupported };

Verdict verdict(bool holds) { return holds ? Verdict::kHolds : Verdict::kFails; }

bool is_string(const AttributeEntry& entry) { return entry.Type == ZEMAD_TYPE_STRING; }

bool is_value_missing(const AttributeEntry& entry, const AttributeEntry& operand) {
  return entry.Value == nullptr || operand.Value == nullptr;
}

const char* bytes_of(const AttributeEntry& entry) { return static_cast<const char*>(entry.Value); }

/// Bytes of a string's text: its length without the NUL.
std::size_t text_bytes(const AttributeEntry& string) {
  return string.Length == 0 ? 0 : string.Length - 1;
}

Verdict test_equal(const AttributeEntry& entry, const AttributeEntry& operand) {
  if (entry.Type == ZEMAD_TYPE_NULL) return Verdict::kHolds;
  if (entry.Length != operand.Length) return Verdict::kFails;
  if (is_value_missing(entry, operand)) return Verdict::kNoValue;
  return verdict(std::memcmp(entry.Value, operand.Value, entry.Length) == 0);
}

/// PREFIX, SUFFIX and CONTAINS: `holds` compares two strings of which the operand is not the longer
/// one. Deliberate: other types pass when they are equal (SelectOperators.OnKeyAndValue).
template <class Holds>
Verdict test_texts(const AttributeEntry& entry, const AttributeEntry& operand, Holds holds) {
  if (!is_string(entry)) return Verdict::kHolds;
  if (operand.Length > entry.Length) return Verdict::kFails;
  if (is_value_missing(entry, operand)) return Verdict::kNoValue;
  return verdict(holds(entry, operand));
}

bool begins_with(const AttributeEntry& entry, const AttributeEntry& operand) {
  return std::memcmp(entry.Value, operand.Value, text_bytes(operand)) == 0;
}

bool ends_with(const AttributeEntry& entry, const AttributeEntry& operand) {
  const char* tail = bytes_of(entry) + (entry.Length - operand.Length);
  return std::memcmp(tail, operand.Value, text_bytes(operand)) == 0;
}

bool contains(const AttributeEntry& entry, const AttributeEntry& operand) {
  return text_of(entry).find(text_of(operand)) != std::string_view::npos;
}

template <class Number>
bool compare(int operator_code, Number entry, Number operand) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_NOT_EQUAL:
      return entry != operand;
    case ZEMAD_OPERATOR_GREATER:
      return entry > operand;
    case ZEMAD_OPERATOR_GREATER_EQUAL:
      return entry >= operand;
    case ZEMAD_OPERATOR_LESS:
      return entry < operand;
    default:
      return entry <= operand;
  }
}

/// Deliberate: what is no number passes (SelectOperators.OnKeyAndValue).
Verdict test_order(int operator_code, const AttributeEntry& entry, const AttributeEntry& operand) {
  const bool is_signed = entry.Type == ZEMAD_TYPE_INT;
  if (!is_signed && entry.Type != ZEMAD_TYPE_UINT) return Verdict::kHolds;
  if (is_value_missing(entry, operand)) return Verdict::kNoValue;
  return verdict(is_signed ? compare(operator_code, int_of(entry), int_of(operand))
                           : compare(operator_code, word_of(entry), word_of(operand)));
}

Verdict test_exists(const AttributeEntry& entry) {
  if (entry.Type == ZEMAD_TYPE_NULL) return Verdict::kFails;
  if (entry.Value == nullptr) return Verdict::kNoValue;
  return verdict(entry.Length > 0 && *bytes_of(entry) != '\0');
}

/// The operators of keys and values alike.
Verdict test_either(int operator_code, const AttributeEntry& entry, const AttributeEntry& operand) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_EQUAL:
      return test_equal(entry, operand);
    case ZEMAD_OPERATOR_PREFIX:
      return test_texts(entry, operand, begins_with);
    case ZEMAD_OPERATOR_SUFFIX:
      return test_texts(entry, operand, ends_with);
    default:
      return Verdict::kUnsupported;
  }
}

/// Deliberate: the language accepts ordering and inequality on keys, the test refuses them
/// (SelectOperators.OnKeyAndValue).
Verdict test_key(int operator_code, const AttributeEntry& entry, const AttributeEntry& operand) {
  return operator_code == ZEMAD_OPERATOR_EXISTS ? test_exists(entry)
                                                : test_either(operator_code, entry, operand);
}

Verdict test_value(int operator_code, const AttributeEntry& entry, const AttributeEntry& operand) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_CONTAINS:
      return test_texts(entry, operand, contains);
    case ZEMAD_OPERATOR_NOT_EQUAL:
    case ZEMAD_OPERATOR_GREATER:
    case ZEMAD_OPERATOR_GREATER_EQUAL:
    case ZEMAD_OPERATOR_LESS:
    case ZEMAD_OPERATOR_LESS_EQUAL:
      return test_order(operator_code, entry, operand);
    default:
      return test_either(operator_code, entry, operand);
  }
}

struct TestTexts {
  const char* no_entry;
  const char* no_value;
  const char* unsupported;
  const char* finished;
};
constexpr TestTexts kKeyTexts = {"ZEMAD_TestSelectKey failure", "ZEMAD_TestSelectKey Value failure",
                                 "Operation on key not supported.", "Finished ZEMAD_TestSelectKey"};
constexpr TestTexts kValueTexts = {
    "ZEMAD_TestSelectValue failure", "ZEMAD_TestSelectValue Value failure",
    "Operation on value not supported.", "Finished ZEMAD_TestSelectValue"};

int conclude(Verdict reached, const TestTexts& texts) {
  if (reached == Verdict::kNoValue) fail(kNoEntry, texts.no_value);
  if (reached == Verdict::kUnsupported) {
    fail(kRefused, texts.unsupported);
    trace(texts.finished);
  }
  return reached == Verdict::kHolds ? 1 : 0;
}

/// Deliberate: both texts are followed by 12.12 (SelectValueTrace.ShowsTypesLengthsWordsAndTexts).
void trace_value_test(const AttributeEntry& entry, const AttributeEntry& operand) {
  if (!zem::log::listens(kSource.module, zem::log::kNormal)) return;
  const std::string entry_text(text_of(entry));
  const std::string operand_text(text_of(operand));
  trace(zem::util::format_text("Enter ZEMAD_TestSelectValue %d %d %d %d %ld %ld %s12.12 %s12.12",
                               static_cast<int>(entry.Type), static_cast<int>(operand.Type),
                               static_cast<int>(entry.Length), static_cast<int>(operand.Length),
                               long{int_of(entry)}, long{int_of(operand)}, entry_text.c_str(),
                               operand_text.c_str())
            .c_str());
}

// The items ---------------------------------------------------------------------------------------

/// The attribute that the item speaks of: the first that its ATTR test finds, and no other.
Attribute* find_attribute(const Select* item) {
  if (item == nullptr || item->Attr == nullptr) {
    fail(kNoAttributeTest, "Select->Attribute NULL failure");
    return nullptr;
  }
  const SelectOperation& operation = *item->Attr;
  if (operation.Find == nullptr) return nullptr;
  Attribute* attribute = operation.Find(operation.Operator, operation.Index);
  if (attribute == nullptr) return nullptr;
  if (const RecordDump dump(kSource.module, zem::log::kNormal); dump) {
    ZEMAD_PrintAttribute(attribute, 1);
  }
  return attribute;
}

using Test = int (*)(int, const AttributeEntry*, const AttributeEntry*);

/// An item without the test holds.
bool holds(const SelectOperation* operation, const AttributeEntry* entry, Test test) {
  if (operation == nullptr) return true;
  const AttributeEntry* operand =
      operation->Get == nullptr ? nullptr : operation->Get(operation->Index);
  if (operand == nullptr) {
    trace("Value Operator failure");
    zem::log::report(kSource, zem::log::kMinor, kNoOperand, "Value Operator failure");
    return false;
  }
  return test(operation->Operator, entry, operand) == 1;
}

bool create(SL_List*& list, const char* failure) {
  list = SL_Create();
  return list != nullptr || fail(kNotCreated, failure);
}

bool append(SL_List* list, AttributeEntry* entry, const char* failure) {
  return SL_InsLast(list, entry) == 1 || fail(kNotAppended, failure);
}

constexpr char kNameListFailure[] = "ZEMAD_NameAttrList failure";
constexpr char kKeyListFailure[] = "ZEMAD_KeyAttrList failure";
constexpr char kValueListFailure[] = "ZEMAD_ValueAttrList failure";

bool create_lists() {
  return create(ZEMAD_NameAttrList, kNameListFailure) &&
         create(ZEMAD_KeyAttrList, kKeyListFailure) &&
         create(ZEMAD_ValueAttrList, kValueListFailure);
}

bool remember(const Attribute& attribute) {
  return append(ZEMAD_NameAttrList, attribute.Name, kNameListFailure) &&
         append(ZEMAD_KeyAttrList, attribute.Key, kKeyListFailure) &&
         append(ZEMAD_ValueAttrList, attribute.Value, kValueListFailure);
}

bool evaluate_item(const Select* item) {
  const Attribute* attribute = find_attribute(item);
  if (attribute == nullptr) return false;
  if (!holds(item->Key, attribute->Key, ZEMAD_TestSelectKey)) return false;
  if (!holds(item->Value, attribute->Value, ZEMAD_TestSelectValue)) return false;
  trace("Correct is TRUE");
  return remember(*attribute);
}

bool evaluate_items(const SL_List* selects) {
  if (selects == nullptr) return fail(kNoItems, "No selection clause (failure)");
  if (!create_lists()) return false;
  if (SL_NbrElm(selects) == 0) return fail(kNoItems, "No selection clause (failure)");
  for (const Select* item : zem::util::sl_items<Select>(selects)) {
    if (!evaluate_item(item)) return false;
  }
  return true;
}

}  // namespace

int ZEMAD_EvalSelect(const SL_List* selects) {
  trace("Entered ZEMAD_EvalSelect");
  const bool selected = evaluate_items(selects);
  trace(selected ? "Finished ZEMAD_EvalSelect, returning TRUE"
                 : "Finished ZEMAD_EvalSelect, returning FALSE");
  return selected ? 1 : 0;
}

int ZEMAD_TestSelectKey(int operator_code, const AttributeEntry* entry,
                        const AttributeEntry* operand) {
  if (entry == nullptr || operand == nullptr) return fail(kNoEntry, kKeyTexts.no_entry) ? 1 : 0;
  if (entry->Type != operand->Type) return 0;
  return conclude(test_key(operator_code, *entry, *operand), kKeyTexts);
}

int ZEMAD_TestSelectValue(int operator_code, const AttributeEntry* entry,
                          const AttributeEntry* operand) {
  if (entry == nullptr || operand == nullptr) return fail(kNoEntry, kValueTexts.no_entry) ? 1 : 0;
  trace_value_test(*entry, *operand);
  if (entry->Type != operand->Type) return 0;
  return conclude(test_value(operator_code, *entry, *operand), kValueTexts);
}
