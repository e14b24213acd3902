/// Memory comes from util/heap.h and goes through ZEMAD_FreePtr, so that a trace can follow every
/// record. Numbers are 4 bytes wherever they are stored, compared or printed, whatever a long is.
#include "adapters/libzemad/configuration.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "adapters/libzemad/error.h"
#include "util/text.h"

namespace {

using zem::kernel::AttributeEntryPtr;
using zem::log::fail;
using zem::log::kFatal;
using zem::log::kMajor;
using zem::log::kVerbose;
using zem::util::HeapText;
using zem::util::sl_free;

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
