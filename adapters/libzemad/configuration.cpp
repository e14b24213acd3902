/// Memory comes from util/heap.h and goes through ZEMAD_FreePtr, so that a trace can follow every
/// record. Numbers are 4 bytes wherever they are stored, compared or printed, whatever a long is.
#include "adapters/libzemad/configuration.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "adapters/libzemad/error.h"
#include "util/text.h"

std::FILE* ZEMAD_PrintFileDescr = nullptr;

namespace {

using zem::kernel::AttributeEntryPtr;
using zem::log::fail;
using zem::log::kFatal;
using zem::log::kMajor;
using zem::log::kVerbose;
using zem::util::HeapText;
using zem::util::sl_free;
using zem::util::sl_items;

constexpr zem::log::Source kSource{zem::log::kUtils, "configuration"};

constexpr int kRefused = 80;
constexpr int kCopyFailed = 81;
constexpr int kNothingToCompare = 82;
constexpr int kNoMemory = 99;

constexpr char kValueIsNull[] = "Value of AttributeEntry may not be NULL";
constexpr char kMallocFailure[] = "Malloc failure";

/// Traces entry and exit of a function.
class FunctionTrace {
 public:
  explicit FunctionTrace(const char* name) : FunctionTrace(name, name) {}
  FunctionTrace(const char* entered, const char* left) : left_(left) { say("Entering ", entered); }
  FunctionTrace(const FunctionTrace&) = delete;
  FunctionTrace& operator=(const FunctionTrace&) = delete;
  ~FunctionTrace() { say("Leaving ", left_); }

 private:
  static void say(const char* what, const char* name) {
    if (!zem::log::listens(kSource.module, kVerbose)) return;
    zem::log::trace(kSource, (std::string(what) + name).c_str(), kVerbose);
  }

  const char* left_;
};

template <class Record>
Record* allocate_record() {
  return static_cast<Record*>(zem::util::allocate(sizeof(Record)));
}

/// A 4-byte entry around the low 32 bits of a number.
AttributeEntry* make_number(std::uint32_t low_bits) {
  HeapText value(static_cast<char*>(zem::util::allocate(sizeof low_bits)));
  if (!value) {
    fail(kSource, kMajor, kNoMemory, kMallocFailure);
    return nullptr;
  }
  std::memcpy(value.get(), &low_bits, sizeof low_bits);
  AttributeEntry* entry = ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_INT, sizeof low_bits, value.get());
  if (entry != nullptr) static_cast<void>(value.release());
  return entry;
}

template <class Number>
Number number_at(const void* bytes) {
  static_assert(sizeof(Number) == 4);
  Number number{};
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

/// Copies `entry` into `copy`; false, after a report, when that fails.
bool copy_part(const AttributeEntry* entry, AttributeEntryPtr& copy, const char* failure) {
  copy.reset(ZEMAD_CopyAttributeEntry(entry));
  if (!copy) fail(kSource, kFatal, kCopyFailed, failure);
  return copy != nullptr;
}

}  // namespace

// Makers ------------------------------------------------------------------------------------------

AttributeEntry* ZEMAD_MakeAttributeEntry(std::uint32_t type, std::uint32_t length, void* value) {
  const FunctionTrace trace("ZEMAD_MakeAttributeEntry");
  if (value == nullptr && length != 0) {
    fail(kSource, kMajor, kRefused, kValueIsNull);
    return nullptr;
  }
  auto* entry = allocate_record<AttributeEntry>();
  if (entry == nullptr) {
    fail(kSource, kFatal, kNoMemory, kMallocFailure);
    return nullptr;
  }
  *entry = AttributeEntry{type, length, value};
  return entry;
}

/// Deliberate: it leaves under the other maker's name
/// (RecordTrace.NullMakerLeavesUnderAnotherName).
AttributeEntry* ZEMAD_MakeNullAttributeEntry() {
  const FunctionTrace trace("ZEMAD_MakeNullAttributeEntry", "ZEMAD_MakeUIntAttributeEntry");
  return ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_NULL, 0, nullptr);
}

AttributeEntry* ZEMAD_MakeIntAttributeEntry(long number) {
  const FunctionTrace trace("ZEMAD_MakeIntAttributeEntry");
  return make_number(static_cast<std::uint32_t>(number));
}

AttributeEntry* ZEMAD_MakeUIntAttributeEntry(unsigned long number) {
  const FunctionTrace trace("ZEMAD_MakeUIntAttributeEntry");
  return make_number(static_cast<std::uint32_t>(number));
}

AttributeEntry* ZEMAD_MakeStringAttributeEntry(const char* text) {
  const FunctionTrace trace("ZEMAD_MakeStringAttributeEntry");
  if (text == nullptr) {
    fail(kSource, kMajor, kRefused, kValueIsNull);
    return nullptr;
  }
  HeapText copy(zem::util::duplicate(text));
  if (!copy) {
    zem::log::trace(kSource, "StrDup failure");
    zem::log::report(kSource, kMajor, kNoMemory, "malloc failure");
    return nullptr;
  }
  const auto length = static_cast<std::uint32_t>(std::strlen(text) + 1);
  AttributeEntry* entry = ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_STRING, length, copy.get());
  if (entry != nullptr) static_cast<void>(copy.release());
  return entry;
}

Attribute* ZEMAD_MakeAttribute(AttributeEntry* name, AttributeEntry* key, AttributeEntry* value) {
  const FunctionTrace trace("ZEMAD_MakeAttribute");
  if (name == nullptr) {
    fail(kSource, kMajor, kRefused, "Name of Attribute may not be NULL");
    return nullptr;
  }
  auto* attribute = allocate_record<Attribute>();
  if (attribute == nullptr) {
    fail(kSource, kFatal, kNoMemory, kMallocFailure);
    return nullptr;
  }
  *attribute = Attribute{name, key, value};
  return attribute;
}

MapEntry* ZEMAD_MakeMapEntry(char* name, char* value) {
  const FunctionTrace trace("ZEMAD_MakeMapEntry");
  if (name == nullptr || value == nullptr) {
    fail(kSource, kMajor, kRefused, "Name/Value of MapEntry may not be NULL");
    return nullptr;
  }
  auto* entry = allocate_record<MapEntry>();
  if (entry == nullptr) {
    fail(kSource, kFatal, kNoMemory, kMallocFailure);
    return nullptr;
  }
  *entry = MapEntry{name, value};
  return entry;
}

// Copies ------------------------------------------------------------------------------------------

AttributeEntry* ZEMAD_CopyAttributeEntry(const AttributeEntry* entry) {
  const FunctionTrace trace("ZEMAD_CopyAttributeEntry");
  if (entry == nullptr) return nullptr;
  if (entry->Value == nullptr) return ZEMAD_MakeNullAttributeEntry();

  HeapText value(static_cast<char*>(zem::util::allocate(std::max(entry->Length, 1U))));
  if (!value) {
    fail(kSource, kFatal, kNoMemory, kMallocFailure);
    return nullptr;
  }
  std::memcpy(value.get(), entry->Value, entry->Length);
  AttributeEntry* copy = ZEMAD_MakeAttributeEntry(entry->Type, entry->Length, value.get());
  if (copy != nullptr) static_cast<void>(value.release());
  return copy;
}

Attribute* ZEMAD_CopyAttribute(const Attribute* attribute) {
  const FunctionTrace trace("ZEMAD_CopyAttribute");
  if (attribute == nullptr) return nullptr;
  AttributeEntryPtr name;
  AttributeEntryPtr key;
  AttributeEntryPtr value;
  if (!copy_part(attribute->Name, name, "Copy Name failure")) return nullptr;
  if (attribute->Key != nullptr && !copy_part(attribute->Key, key, "Copy Key failure")) {
    return nullptr;
  }
  if (attribute->Value != nullptr && !copy_part(attribute->Value, value, "Copy Value failure")) {
    return nullptr;
  }
  Attribute* copy = ZEMAD_MakeAttribute(name.get(), key.get(), value.get());
  if (copy != nullptr) {
    for (AttributeEntryPtr* owned : {&name, &key, &value}) static_cast<void>(owned->release());
  }
  return copy;
}

// Comparison and conversion -----------------------------------------------------------------------

int ZEMAD_CompareMapEntryByName(const void* a, const void* b) {
  zem::log::trace(kSource, "Called ZEMAD_CompareMapEntryByName", kVerbose);
  const auto* left = static_cast<const MapEntry*>(a);
  const auto* right = static_cast<const MapEntry*>(b);
  if (left == nullptr || right == nullptr || left->Name == nullptr || right->Name == nullptr) {
    fail(kSource, kMajor, kNothingToCompare, "ZEMAD_CompareMapEntryByName NULL failure");
    return 0;
  }
  return std::strcmp(left->Name, right->Name) == 0 ? 1 : 0;
}

const char* ZEMAD_AttributeEntryValueToString(const AttributeEntry* entry) {
  static char number[32];
  if (entry == nullptr || entry->Value == nullptr) return nullptr;
  switch (entry->Type) {
    case ZEMAD_TYPE_STRING:
      return static_cast<const char*>(entry->Value);
    case ZEMAD_TYPE_INT:
      std::snprintf(number, sizeof number, "%ld",
                    static_cast<long>(number_at<std::int32_t>(entry->Value)));
      return number;
    case ZEMAD_TYPE_UINT:
      std::snprintf(number, sizeof number, "%lu",
                    static_cast<unsigned long>(number_at<std::uint32_t>(entry->Value)));
      return number;
    default:
      return nullptr;
  }
}

int ZEMAD_EqualString(const void* entry, const void* text) {
  const auto* constant = static_cast<const AttributeEntry*>(entry);
  const std::size_t size = std::strlen(static_cast<const char*>(text)) + 1;
  return constant->Type == ZEMAD_TYPE_STRING && constant->Length == size &&
                 std::memcmp(constant->Value, text, size) == 0
             ? 1
             : 0;
}

int ZEMAD_EqualInt(const void* entry, const void* number) {
  const auto* constant = static_cast<const AttributeEntry*>(entry);
  return constant->Type == ZEMAD_TYPE_INT &&
                 number_at<std::int32_t>(constant->Value) == number_at<std::int32_t>(number)
             ? 1
             : 0;
}

// Printers ----------------------------------------------------------------------------------------

namespace {

void print(const char* format, ...) __attribute__((format(printf, 1, 2)));
void print(const char* format, ...) {
  if (ZEMAD_PrintFileDescr == nullptr) return;
  va_list args;
  va_start(args, format);
  std::vfprintf(ZEMAD_PrintFileDescr, format, args);
  va_end(args);
}

/// "TEXT" and what follows, or NULL and what follows.
void print_quoted(const char* text, const char* end) {
  if (text == nullptr) {
    print("NULL%s", end);
  } else {
    print("\"%s\"%s", text, end);
  }
}

const char* text_or_null(const char* text) { return text == nullptr ? "NULL" : text; }

void print_list(const char* heading, const SL_List* list, SL_Visit print_element) {
  if (list == nullptr) return;
  print("%s", heading);
  SL_Walk(list, print_element);
}

void print_operation(const char* heading, SelectOperation* operation) {
  if (operation == nullptr) return;
  print("%s", heading);
  ZEMAD_PrintSelectOperation(operation, 1);
}

void print_expression(const Expression* expression, int position, int depth) {
  if (expression == nullptr) return;
  print("%*s %ld: %d (%d) \n", depth, "", static_cast<long>(position),
        static_cast<int>(reinterpret_cast<std::intptr_t>(expression->Routine)), expression->Number);
  int argument_position = 0;
  for (const Expression* argument : sl_items<Expression>(expression->Arguments)) {
    print_expression(argument, ++argument_position, depth + 1);
  }
}

}  // namespace

int ZEMAD_PrintAttributeEntry(void* entry, int /*position*/) {
  const auto* value = static_cast<const AttributeEntry*>(entry);
  if (value == nullptr) {
    print("NULL\n");
  } else {
    print("ZEMAD_TYPE %u\t%u\t", value->Type, value->Length);
    print_quoted(ZEMAD_AttributeEntryValueToString(value), "\n");
  }
  return 1;
}

int ZEMAD_PrintAttribute(void* attribute, int position) {
  const auto* printed = static_cast<const Attribute*>(attribute);
  if (printed == nullptr) {
    print("Attribute: NULL\n\n");
    return 1;
  }
  print(" Name: ");
  ZEMAD_PrintAttributeEntry(printed->Name, position);
  print("  Key: ");
  ZEMAD_PrintAttributeEntry(printed->Key, position);
  print("Value: ");
  ZEMAD_PrintAttributeEntry(printed->Value, position);
  print("\n");
  return 1;
}

int ZEMAD_PrintMapEntry(void* entry, int /*position*/) {
  const auto* slot = static_cast<const MapEntry*>(entry);
  if (slot == nullptr) {
    print("NULL\n");
  } else {
    print_quoted(slot->Name, " -> ");
    print_quoted(slot->Value, "\n");
  }
  return 1;
}

int ZEMAD_PrintConfig(void* config, int position) {
  const auto* printed = static_cast<const Config*>(config);
  if (printed == nullptr) return 1;
  print("CLASS %d: %s\n", position,
        printed->ClassName == nullptr ? "*DISCARD*" : printed->ClassName);
  print_list("Select:\n", printed->SelectList, ZEMAD_PrintSelect);
  print_list("Fetch:\n", printed->FetchList, ZEMAD_PrintFetch);
  print_list("Map:\n", printed->MapList, ZEMAD_PrintMap);
  return 1;
}

int ZEMAD_PrintSelect(void* select, int /*position*/) {
  const auto* printed = static_cast<const Select*>(select);
  if (printed == nullptr) return 1;
  print_operation(" Attr: ", printed->Attr);
  print_operation(" Key: ", printed->Key);
  print_operation(" Value: ", printed->Value);
  print("\n");
  return 1;
}

int ZEMAD_PrintSelectOperation(void* operation, int /*position*/) {
  const auto* printed = static_cast<const SelectOperation*>(operation);
  if (printed == nullptr) return 1;
  print("%d: %lX (%d) ", printed->Operator, reinterpret_cast<unsigned long>(printed->Get),
        printed->Index);
  return 1;
}

int ZEMAD_PrintFetch(void* fetch, int position) {
  const auto* printed = static_cast<const Fetch*>(fetch);
  if (printed == nullptr) return 1;
  print("slot %d:\n", position);
  ZEMAD_PrintExpression(printed->Expr, 1);
  return 1;
}

int ZEMAD_PrintExpression(void* expression, int position) {
  print_expression(static_cast<const Expression*>(expression), position, 1);
  return 1;
}

int ZEMAD_PrintMap(void* map, int position) {
  const auto* printed = static_cast<const Map*>(map);
  if (printed == nullptr) return 1;
  print("slot %d: %s: ", position, text_or_null(printed->SlotName));
  print("%s: ", text_or_null(printed->Format));
  SL_Walk(printed->Variables, ZEMAD_PrintVariable);
  print("\n");
  return 1;
}

int ZEMAD_PrintVariable(void* variable, int position) {
  const auto* printed = static_cast<const Variable*>(variable);
  if (printed == nullptr) return 1;
  print("var %d: %ld (%d) ", position, reinterpret_cast<long>(printed->Routine), printed->Index);
  return 1;
}

// Releasers ---------------------------------------------------------------------------------------

void ZEMAD_FreeAttributeEntry(AttributeEntry* entry) {
  if (entry == nullptr) return;
  ZEMAD_FreePtr(entry->Value);
  ZEMAD_FreePtr(entry);
}

void ZEMAD_FreeAttribute(Attribute* attribute) {
  if (attribute == nullptr) return;
  ZEMAD_FreeAttributeEntry(attribute->Name);
  ZEMAD_FreeAttributeEntry(attribute->Key);
  ZEMAD_FreeAttributeEntry(attribute->Value);
  ZEMAD_FreePtr(attribute);
}

void ZEMAD_FreeMapEntry(MapEntry* entry) {
  if (entry == nullptr) return;
  ZEMAD_FreePtr(entry->Name);
  ZEMAD_FreePtr(entry->Value);
  ZEMAD_FreePtr(entry);
}

void ZEMAD_FreeConfig(Config* config) {
  if (config == nullptr) return;
  ZEMAD_FreePtr(config->ClassName);
  SL_DelAll(config->SelectList, sl_free<ZEMAD_FreeSelect>);
  SL_DelAll(config->FetchList, sl_free<ZEMAD_FreeFetch>);
  SL_DelAll(config->MapList, sl_free<ZEMAD_FreeMap>);
  ZEMAD_FreePtr(config);
}

void ZEMAD_FreeSelect(Select* select) {
  if (select == nullptr) return;
  ZEMAD_FreeSelectOperation(select->Attr);
  ZEMAD_FreeSelectOperation(select->Key);
  ZEMAD_FreeSelectOperation(select->Value);
  ZEMAD_FreePtr(select);
}

void ZEMAD_FreeSelectOperation(SelectOperation* operation) { ZEMAD_FreePtr(operation); }

void ZEMAD_FreeFetch(Fetch* fetch) {
  if (fetch == nullptr) return;
  ZEMAD_FreeExpression(fetch->Expr);
  ZEMAD_FreePtr(fetch);
}

void ZEMAD_FreeExpression(Expression* expression) {
  if (expression == nullptr) return;
  SL_DelAll(expression->Arguments, sl_free<ZEMAD_FreeExpression>);
  ZEMAD_FreePtr(expression);
}

void ZEMAD_FreeMap(Map* map) {
  if (map == nullptr) return;
  ZEMAD_FreePtr(map->SlotName);
  ZEMAD_FreePtr(map->Format);
  SL_DelAll(map->Variables, sl_free<ZEMAD_FreeVariable>);
  ZEMAD_FreePtr(map);
}

void ZEMAD_FreeVariable(Variable* variable) { ZEMAD_FreePtr(variable); }

void ZEMAD_FreePtr(void* memory) {
  if (memory == nullptr) return;
  if (zem::log::listens(kSource.module, kVerbose)) {
    const auto address = reinterpret_cast<unsigned long>(memory);
    zem::log::trace(kSource, zem::util::format_text("Free pointer %lx", address).c_str(), kVerbose);
  }
  zem::util::release(memory);
}

void ZEMAD_FreeNo(void* /*memory*/) {}
