#include "tests/support/random_classes.h"

namespace zem::test {
namespace {

constexpr const char* kNames[] = {"a", "b", "ab", "msg", "host"};
constexpr const char* kValues[] = {"", "x", "xy", "it's", "a b", "k=v", "''", "7", "\x80"};
constexpr const char* kOperators[] = {"=",        "=", "=",  "PREFIX", "SUFFIX",
                                      "CONTAINS", ">", "!=", "<="};
constexpr const char* kConversions[] = {"%s", "%s", "%s", "%5s", "%-4s", "%03s", "%.1s", "%-03.2s"};
constexpr const char* kBadFormats[] = {"none", "%d", "%", "%s%", "%s and %s and %s", "%9999s"};
constexpr const char* kBetween[] = {"", "-", " on ", "'", ";"};

std::string quoted(const std::string& text) { return std::string("\"").append(text).append("\""); }

}  // namespace

std::string RandomClasses::class_file() {
  std::string text;
  if (pick(3) == 0) text += defaults();
  for (std::size_t i = 1 + pick(6); i > 0; --i) text += one_class();
  return text;
}

std::vector<std::string> RandomClasses::names() {
  std::vector<std::string> names;
  if (!rarely()) names.emplace_back("_event_id");
  for (std::size_t i = pick(5); i > 0; --i) names.emplace_back(one_of(kNames));
  if (rarely()) names.emplace_back("_event_id");
  if (names.empty()) names.emplace_back("a");
  return names;
}

std::vector<std::string> RandomClasses::values(const std::vector<std::string>& names) {
  std::vector<std::string> values;
  for (const std::string& name : names) {
    values.push_back(name == "_event_id" ? std::to_string(pick(4)) : one_of(kValues));
  }
  return values;
}

std::string RandomClasses::defaults() {
  std::string text = "MAP_DEFAULT\n";
  for (std::size_t i = 1 + pick(3); i > 0; --i) {
    text += quoted(one_of(kNames)) + " = ";
    text += pick(4) == 0 ? printf_of({constant(), constant()}) : constant();
    text += ";\n";
  }
  return text + "END\n";
}

std::string RandomClasses::one_class() {
  std::string text = "CLASS ";
  text += rarely() ? "*DISCARD*" : one_of({"A", "\"Class B\"", "C_1"});
  const std::size_t items = rarely() ? 0 : 1 + pick(4);
  text.append("\n").append(select(items));
  const bool fetches = items > 0 && rarely();
  if (fetches) text += "FETCH 1: SUBSTR(" + reference(items) + ", 1, 2);\n";
  if (pick(5) == 0) return text + "END\n";
  text += "MAP\n";
  for (std::size_t i = 1 + pick(5); i > 0; --i) text += map_line(items, fetches);
  return text + "END\n";
}

std::string RandomClasses::select(std::size_t items) {
  if (items == 0) return "";
  std::string text = "SELECT\n";
  std::size_t number = 1;
  if (pick(4) != 0) {
    text += "1: ATTR(=,\"_event_id\"), VALUE(=,\"" + std::to_string(pick(4)) + "\");\n";
    ++number;
  }
  for (; number <= items; ++number) text += std::to_string(number) + ": " + item(number - 1);
  return text;
}

std::string RandomClasses::item(std::size_t earlier) {
  std::string text = std::string("ATTR(") + one_of({"=", "=", "=", "PREFIX", "SUFFIX"}) + ",";
  if (rarely()) {
    text += earlier > 0 && pick(2) == 0 ? reference(earlier) : one_of({"\"\"", "7"});
  } else {
    text += quoted(one_of(kNames));
  }
  text += ")";
  if (rarely()) text += std::string(", KEY(") + one_of({"=,\"\"", "=,\"k\"", ">,\"k\""}) + ")";
  if (pick(3) == 0) {
    text += std::string(", VALUE(") + one_of(kOperators) + ",";
    text += earlier > 0 && rarely() ? reference(earlier) : constant();
    text += ")";
  }
  return text + ";\n";
}

std::string RandomClasses::map_line(std::size_t items, bool fetches) {
  std::string text = quoted(rarely() ? "two words" : one_of(kNames)) + " = ";
  if (pick(3) != 0) return text + variable(items, fetches) + ";\n";
  std::vector<std::string> variables;
  for (std::size_t i = 1 + pick(3); i > 0; --i) variables.push_back(variable(items, fetches));
  return text + printf_of(variables) + ";\n";
}

std::string RandomClasses::reference(std::size_t items) {
  return std::string(one_of({"$V", "$V", "$V", "$N", "$K"}))
      .append(std::to_string(1 + pick(items)));
}

std::string RandomClasses::constant() { return pick(5) == 0 ? "7" : quoted(one_of(kValues)); }

std::string RandomClasses::variable(std::size_t items, bool fetches) {
  if (fetches && pick(2) == 0) return "$F1";
  return items > 0 && pick(3) != 0 ? reference(items) : constant();
}

std::string RandomClasses::format_for(std::size_t variables) {
  if (rarely()) return one_of(kBadFormats);
  std::string format(one_of(kBetween));
  for (; variables > 0; --variables) format.append(one_of(kConversions)).append(one_of(kBetween));
  return format;
}

std::string RandomClasses::printf_of(const std::vector<std::string>& variables) {
  std::string text = std::string("PRINTF(").append(quoted(format_for(variables.size())));
  for (const std::string& variable : variables) text.append(", ").append(variable);
  return text.append(")");
}

}  // namespace zem::test
