/// A compiled rule knows an operand as a routine and an index; the tables of parse_config.h lead
/// from the routine back to the kind, and the kind says how it is written.
#include "adapters/libzemad/class_writer.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/parse_config.h"
#include "util/expect.h"
#include "util/slist.h"

namespace zem::kernel {

namespace {

using util::sl_items;

/// By operator code.
constexpr std::array<std::string_view, 11> kOperators = {
    "", "=", "PREFIX", "SUFFIX", "!=", ">", ">=", "<", "<=", "EXISTS", "CONTAINS"};

/// Always in quotes, which every byte but a NUL goes through.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char byte : text) {
    if (byte == '"') result += '"';
    result += byte;
  }
  return result + '"';
}

std::string constant_text(int index) {
  const auto* entry = static_cast<const AttributeEntry*>(SL_GetPos(ZEMAD_ConstantList, index));
  util::expect(entry != nullptr, "a compiled rule names a constant that exists");
  const char* text = ZEMAD_AttributeEntryValueToString(entry);
  return entry->Type == ZEMAD_TYPE_STRING ? quoted(text) : text;
}

std::string keyword_text(int index) {
  const Attribute* row = ZEMAD_KeywordRow(index);
  util::expect(row != nullptr, "a compiled rule names a keyword that exists");
  return std::string("$") + ZEMAD_AttributeEntryValueToString(row->Name);
}

std::string operand_text(int access, int index) {
  switch (access) {
    case ZEMAD_ACCESS_GLOBAL:
      return keyword_text(index);
    case ZEMAD_ACCESS_CONSTANT:
      return constant_text(index);
    case ZEMAD_ACCESS_NAME:
      return "$N" + std::to_string(index + 1);
    case ZEMAD_ACCESS_KEY:
      return "$K" + std::to_string(index + 1);
    case ZEMAD_ACCESS_VALUE:
      return "$V" + std::to_string(index + 1);
    default:
      return "$F" + std::to_string(index + 1);
  }
}

/// The kind for which `table` gives `routine`. A fetch result has no row in one of the tables: the
/// null routine stands for it there.
template <class Routine>
int access_of(Routine routine, Routine (*table)(int)) {
  for (int access = ZEMAD_ACCESS_GLOBAL; access < ZEMAD_ACCESS_FETCH; ++access) {
    if (table(access) == routine) return access;
  }
  return ZEMAD_ACCESS_FETCH;
}

std::string test_text(std::string_view name, const SelectOperation& test, int access) {
  return std::string(name) + "(" +
         std::string(kOperators[static_cast<std::size_t>(test.Operator)]) + "," +
         operand_text(access, test.Index) + ")";
}

std::string select_text(const Select& select) {
  std::string text =
      test_text("ATTR", *select.Attr, access_of(select.Attr->Find, ZEMAD_GetOperatorAttrName));
  if (select.Key != nullptr) {
    text += ", " + test_text("KEY", *select.Key, access_of(select.Key->Get, ZEMAD_GetOperatorAttr));
  }
  if (select.Value != nullptr) {
    text += ", " +
            test_text("VALUE", *select.Value, access_of(select.Value->Get, ZEMAD_GetOperatorAttr));
  }
  return text;
}

std::string_view function_name(ZEMAD_EvalRoutine routine) {
  if (routine == ZEMAD_EvalSubstr) return "SUBSTR";
  return routine == ZEMAD_EvalIPname ? "IPNAME" : "IPADDR";
}

std::string expression_text(const Expression& expression) {
  if (expression.Arguments == nullptr) {
    return operand_text(access_of(expression.Routine, ZEMAD_GetOperatorFetch), expression.Number);
  }
  std::string text(function_name(expression.Routine));
  char separator = '(';
  for (const auto* argument : sl_items<Expression>(expression.Arguments)) {
    text += separator + expression_text(*argument);
    separator = ',';
  }
  return text + ")";
}

std::string map_text(const Map& map) {
  std::string variables;
  for (const auto* variable : sl_items<Variable>(map.Variables)) {
    if (!variables.empty()) variables += ", ";
    variables += operand_text(access_of(variable->Routine, ZEMAD_GetOperator), variable->Index);
  }
  const std::string slot = quoted(map.SlotName) + " = ";
  if (map.Format == nullptr) return slot + variables;
  return slot + "PRINTF(" + quoted(map.Format) + ", " + variables + ")";
}

/// A section with numbered items; empty without items.
template <class Item, class Text>
std::string numbered(std::string_view heading, const SL_List* items, Text text_of) {
  std::string text;
  int number = 0;
  for (const auto* item : sl_items<Item>(items)) {
    text += "    " + std::to_string(++number) + ": " + text_of(*item) + ";\n";
  }
  return text.empty() ? text : "  " + std::string(heading) + "\n" + text;
}

std::string map_lines(const SL_List* maps, std::string_view indent) {
  std::string text;
  for (const auto* map : sl_items<Map>(maps)) {
    text.append(indent).append(map_text(*map)).append(";\n");
  }
  return text;
}

}  // namespace

std::string class_text(const Config& config) {
  const std::string_view name = config.ClassName == nullptr ? "*DISCARD*" : config.ClassName;
  std::string text = "CLASS " + quoted(name) + "\n";
  text += numbered<Select>("SELECT", config.SelectList, select_text);
  text += numbered<Fetch>("FETCH", config.FetchList,
                          [](const Fetch& fetch) { return expression_text(*fetch.Expr); });
  if (config.MapList != nullptr) text += "  MAP\n" + map_lines(config.MapList, "    ");
  return text + "END\n";
}

std::string class_file_text() {
  std::string text;
  for (const auto* config : sl_items<Config>(ZEMAD_ConfigurationList)) text += class_text(*config);
  if (SL_NbrElm(ZEMAD_DefaultMapList) > 0) {
    text += "MAP_DEFAULT\n" + map_lines(ZEMAD_DefaultMapList, "  ") + "END\n";
  }
  return text;
}

}  // namespace zem::kernel
