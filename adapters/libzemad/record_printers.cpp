/// The printers of the kernel's records, for the dumps in the error and trace log. Addresses of
/// routines are shown as numbers: they only tell whether two rules use the same one.
#include <cstdarg>
#include <cstdint>

#include "adapters/libzemad/configuration.h"
#include "util/slist.h"

std::FILE* ZEMAD_PrintFileDescr = nullptr;

namespace {

using zem::util::sl_items;

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
