// A recursive descent over the grammar of class files. A function that meets a fault notes it and
// returns false, and so do all above it up to the class.
#include "tools/fmt/class_outline.h"

#include <array>
#include <string_view>
#include <utility>

#include "tools/fmt/class_lexer.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

constexpr std::size_t kFaultsMax = 200;
/// As deep as the kernel's own parser goes, or nearly so.
constexpr int kDepthMax = 140;

using Kind = ClassOperand::Kind;

struct Reference {
  int token;
  Kind kind;
};
constexpr std::array kReferences = {
    Reference{TOKEN_NAME_REF, Kind::kName}, Reference{TOKEN_KEY_REF, Kind::kKey},
    Reference{TOKEN_VALUE_REF, Kind::kValue}, Reference{TOKEN_FETCH_REF, Kind::kFetch}};

class ClassReader {
 public:
  explicit ClassReader(const SourceText& source) : lexer_(source) {}
  ClassFileOutline read();

 private:
  // Statements
  void read_statement();
  bool read_class();
  bool read_sections();
  bool read_defaults();

  // SELECT
  bool read_select_item();
  bool read_tests(SelectItem& item);
  bool read_short_form(SelectItem& item);
  bool read_test(const char* name, ClassTest& test);
  bool read_operator(int& operator_code);

  // FETCH and MAP
  bool read_fetch_item();
  bool read_expression(int depth);
  bool read_arguments(int count, int depth);
  bool read_map_line(MapLine& line);
  bool read_printf(MapLine& line);

  // Parts
  bool read_number(std::size_t taken);
  bool read_operand(ClassOperand& operand);
  bool read_reference(ClassOperand& operand);
  bool check_reference(const ClassOperand& operand);
  bool expect(int token, const char* shown);

  [[nodiscard]] bool at(int token) const { return lexer_.kind() == token; }
  [[nodiscard]] std::string seen() const;
  bool fault(std::string text, std::string remedy);
  bool fault_at(Span where, std::string text, std::string remedy);
  [[nodiscard]] ClassOutline& current() { return outline_.classes.back(); }
  [[nodiscard]] Span since(Span start) const;

  ClassLexer lexer_;
  ClassFileOutline outline_;
  bool is_in_class_ = false;
};

// Parts -------------------------------------------------------------------------------------------

std::string ClassReader::seen() const {
  return lexer_.at_end() ? "the file ends" : quoted(lexer_.text()) + " stands here";
}

bool ClassReader::fault(std::string text, std::string remedy) {
  return fault_at(lexer_.span(), std::move(text), std::move(remedy));
}

bool ClassReader::fault_at(Span where, std::string text, std::string remedy) {
  outline_.findings.push_back({Code::kClassSyntax, where, std::move(text), std::move(remedy)});
  return false;
}

/// From the start of `start` to the token that was read last but one, or nearly so.
Span ClassReader::since(Span start) const {
  return {start.position, lexer_.span().position - start.position};
}

bool ClassReader::expect(int token, const char* shown) {
  if (!at(token)) {
    return fault(quoted(shown) + " should stand here, but " + seen(), "write " + quoted(shown));
  }
  lexer_.advance();
  return true;
}

bool ClassReader::read_number(std::size_t taken) {
  if (!at(TOKEN_NUMBER)) {
    return fault("an item begins with its number, but " + seen(), "write 1: and so on, or END");
  }
  const auto expected = static_cast<int>(taken) + 1;
  if (lexer_.number() != expected) {
    return fault("this is item " + std::to_string(expected) + ", not " + lexer_.text(),
                 "items are numbered 1, 2, 3 without a gap");
  }
  lexer_.advance();
  return expect(':', ":");
}

bool ClassReader::read_operand(ClassOperand& operand) {
  operand.text = lexer_.text();
  operand.where = lexer_.span();
  if (at(TOKEN_STRING)) {
    operand.kind = Kind::kText;
  } else if (at(TOKEN_NUMBER)) {
    operand.kind = Kind::kNumber;
    operand.number = lexer_.number();
  } else if (!read_reference(operand)) {
    return false;
  }
  lexer_.advance();
  return true;
}

bool ClassReader::read_reference(ClassOperand& operand) {
  for (const Reference& reference : kReferences) {
    if (!at(reference.token)) continue;
    operand.kind = reference.kind;
    operand.number = lexer_.number();
    return check_reference(operand);
  }
  return fault("a text, a number or a reference should stand here, but " + seen(),
               "put a word of the language in quotes");
}

bool ClassReader::check_reference(const ClassOperand& operand) {
  const bool is_fetch = operand.kind == Kind::kFetch;
  if (!is_in_class_) return fault("MAP_DEFAULT has no items to refer to", "use a text or a number");
  const std::size_t count = is_fetch ? current().fetches.size() : current().selects.size();
  if (operand.number >= 1 && static_cast<std::size_t>(operand.number) <= count) return true;
  return fault(operand.text + " refers to an item that does not stand before it",
               "there is " + counted(count, is_fetch ? "FETCH item" : "SELECT item") +
                   " before it in this class");
}

// SELECT ------------------------------------------------------------------------------------------

struct OperatorWord {
  int token;
  int code;
};
constexpr std::array kOperatorWords = {OperatorWord{'=', ZEMAD_OPERATOR_EQUAL},
                                       OperatorWord{TOKEN_PREFIX, ZEMAD_OPERATOR_PREFIX},
                                       OperatorWord{TOKEN_SUFFIX, ZEMAD_OPERATOR_SUFFIX},
                                       OperatorWord{TOKEN_EXISTS, ZEMAD_OPERATOR_EXISTS},
                                       OperatorWord{TOKEN_CONTAINS, ZEMAD_OPERATOR_CONTAINS},
                                       OperatorWord{'!', ZEMAD_OPERATOR_NOT_EQUAL},
                                       OperatorWord{'>', ZEMAD_OPERATOR_GREATER},
                                       OperatorWord{'<', ZEMAD_OPERATOR_LESS}};

bool ClassReader::read_operator(int& operator_code) {
  operator_code = 0;
  for (const OperatorWord& word : kOperatorWords) {
    if (at(word.token)) operator_code = word.code;
  }
  if (operator_code == 0) {
    return fault("an operator should stand here, but " + seen(),
                 "=, PREFIX, SUFFIX, and for values CONTAINS, !=, <, <=, > and >=");
  }
  lexer_.advance();
  if (operator_code == ZEMAD_OPERATOR_NOT_EQUAL) return expect('=', "=");
  const bool may_go_on =
      operator_code == ZEMAD_OPERATOR_GREATER || operator_code == ZEMAD_OPERATOR_LESS;
  if (may_go_on && at('=')) {
    ++operator_code;  // "or equal" comes next in the table
    lexer_.advance();
  }
  return true;
}
static_assert(ZEMAD_OPERATOR_GREATER + 1 == int{ZEMAD_OPERATOR_GREATER_EQUAL});
static_assert(ZEMAD_OPERATOR_LESS + 1 == int{ZEMAD_OPERATOR_LESS_EQUAL});

bool has_operator(std::string_view test, int code) {
  if (code <= ZEMAD_OPERATOR_SUFFIX) return true;
  if (test == "ATTR") return false;
  if (code == ZEMAD_OPERATOR_EXISTS) return test == "KEY";
  return code != ZEMAD_OPERATOR_CONTAINS || test == "VALUE";
}

bool ClassReader::read_test(const char* name, ClassTest& test) {
  const Span start = lexer_.span();
  lexer_.advance();
  if (!expect('(', "(")) return false;
  const Span operator_span = lexer_.span();
  if (!read_operator(test.operator_code)) return false;
  if (!has_operator(name, test.operator_code)) {
    return fault_at(operator_span,
                    std::string(name) + " has no operator " + operator_text(test.operator_code),
                    "ATTR: = PREFIX SUFFIX; KEY: these and EXISTS; VALUE: these, CONTAINS, != < <= "
                    "> >=");
  }
  if (!expect(',', ",") || !read_operand(test.operand)) return false;
  if (test.operand.kind == Kind::kFetch) {
    return fault_at(test.operand.where, "a FETCH result is not known in SELECT",
                    "FETCH is computed when the class has been selected");
  }
  test.where = {start.position, lexer_.span().position + 1 - start.position};
  return expect(')', ")");
}

bool ClassReader::read_tests(SelectItem& item) {
  if (!read_test("ATTR", item.attr)) return false;
  while (at(',')) {
    lexer_.advance();
    if (at(TOKEN_KEY) && !item.key && !item.value) {
      if (!read_test("KEY", item.key.emplace())) return false;
    } else if (at(TOKEN_VALUE) && !item.value) {
      if (!read_test("VALUE", item.value.emplace())) return false;
    } else {
      return fault("a KEY or VALUE test should stand here, but " + seen(),
                   "the order is ATTR, KEY, VALUE, each once at most");
    }
  }
  return true;
}

bool ClassReader::read_short_form(SelectItem& item) {
  if (!at(TOKEN_STRING) && !at(TOKEN_NUMBER)) {
    return fault("a test should stand here, but " + seen(),
                 "write ATTR(=,\"slot\"), or \"slot\" = \"text\"");
  }
  if (!read_operand(item.attr.operand)) return false;
  item.attr.where = item.attr.operand.where;
  if (!expect('=', "=")) return false;
  ClassTest& value = item.value.emplace();
  if (!read_operand(value.operand)) return false;
  value.where = value.operand.where;
  if (value.operand.kind != Kind::kFetch) return true;
  return fault_at(value.where, "a FETCH result is not known in SELECT",
                  "FETCH is computed when the class has been selected");
}

bool ClassReader::read_select_item() {
  const Span start = lexer_.span();
  SelectItem item;
  if (!read_number(current().selects.size())) return false;
  if (!(at(TOKEN_ATTR) ? read_tests(item) : read_short_form(item))) return false;
  item.where = since(start);
  if (!expect(';', ";")) return false;
  current().selects.push_back(std::move(item));
  return true;
}

// FETCH -------------------------------------------------------------------------------------------

bool ClassReader::read_fetch_item() {
  const Span start = lexer_.span();
  if (!read_number(current().fetches.size()) || !read_expression(0)) return false;
  const Span where = since(start);
  if (!expect(';', ";")) return false;
  current().fetches.push_back({where});
  return true;
}

bool ClassReader::read_expression(int depth) {
  if (depth > kDepthMax) return fault("functions are nested too deep", "use a FETCH item for each");
  if (at(TOKEN_SUBSTR)) return read_arguments(3, depth);
  if (at(TOKEN_IPNAME) || at(TOKEN_IPADDR)) return read_arguments(1, depth);
  ClassOperand operand;
  return read_operand(operand);
}

bool ClassReader::read_arguments(int count, int depth) {
  lexer_.advance();
  if (!expect('(', "(")) return false;
  for (int i = 0; i < count; ++i) {
    if (i > 0 && !expect(',', ",")) return false;
    if (!read_expression(depth + 1)) return false;
  }
  return expect(')', ")");
}

// MAP ---------------------------------------------------------------------------------------------

bool ClassReader::read_map_line(MapLine& line) {
  if (!at(TOKEN_STRING)) {
    return fault("a slot's name or END should stand here, but " + seen(),
                 "write slot = value; and put a word of the language in quotes");
  }
  line.slot = lexer_.text();
  line.where = lexer_.span();
  lexer_.advance();
  if (!expect('=', "=")) return false;
  if (at(TOKEN_PRINTF)) {
    if (!read_printf(line)) return false;
  } else if (!read_operand(line.operands.emplace_back())) {
    return false;
  }
  return expect(';', ";");
}

bool ClassReader::read_printf(MapLine& line) {
  lexer_.advance();
  if (!at('(')) return expect('(', "(");
  lexer_.advance_to_format();
  if (!at(TOKEN_STRING)) {
    return fault("the format of PRINTF should stand here, but " + seen(), "write it in quotes");
  }
  line.format = lexer_.text();
  line.format_where = lexer_.span();
  lexer_.advance();
  if (!at(',')) {
    return fault("PRINTF needs at least one argument, but " + seen(),
                 "write the text without PRINTF");
  }
  while (at(',')) {
    lexer_.advance();
    if (!read_operand(line.operands.emplace_back())) return false;
  }
  return expect(')', ")");
}

// Statements --------------------------------------------------------------------------------------

ClassFileOutline ClassReader::read() {
  lexer_.advance();
  while (!lexer_.at_end() && outline_.findings.size() < kFaultsMax) read_statement();
  return std::move(outline_);
}

/// People mix up the two languages, and the two files on a command line.
std::string remedy_between_classes(std::string_view word) {
  if (word == "FORMAT") return "this begins a FORMAT: those have a file of their own";
  if (word.starts_with("\xEF\xBB\xBF")) {
    return "the file begins with a byte order mark: save it without";
  }
  if (word.starts_with("//") || word.starts_with("/*")) {
    return "a comment begins with #; // and /* are for format files";
  }
  return "classes stand one after another, each with its END";
}

void ClassReader::read_statement() {
  bool is_good = true;
  if (at(TOKEN_CLASS)) {
    is_good = read_class();
  } else if (at(TOKEN_MAP_DEFAULT)) {
    is_good = read_defaults();
  } else {
    is_good = fault("CLASS or MAP_DEFAULT should stand here, but " + seen(),
                    remedy_between_classes(lexer_.text()));
    lexer_.advance();
  }
  while (!is_good && !lexer_.at_end() && !at(TOKEN_CLASS) && !at(TOKEN_MAP_DEFAULT)) {
    lexer_.advance();
  }
}

bool ClassReader::read_class() {
  lexer_.advance();
  if (!at(TOKEN_STRING)) {
    return fault("CLASS needs a name, but " + seen(), "put a word of the language in quotes");
  }
  is_in_class_ = true;
  outline_.classes.push_back({lexer_.text(), lexer_.span(), {}, {}, {}, false});
  lexer_.advance();
  current().is_whole = read_sections();
  return current().is_whole;
}

bool ClassReader::read_sections() {
  if (at(TOKEN_SELECT)) {
    lexer_.advance();
    do {
      if (!read_select_item()) return false;
    } while (at(TOKEN_NUMBER));
  }
  if (at(TOKEN_FETCH)) {
    lexer_.advance();
    do {
      if (!read_fetch_item()) return false;
    } while (at(TOKEN_NUMBER));
  }
  if (at(TOKEN_MAP)) {
    lexer_.advance();
    do {
      if (!read_map_line(current().maps.emplace_back())) return false;
    } while (at(TOKEN_STRING));
  }
  if (at(TOKEN_END)) {
    lexer_.advance();
    return true;
  }
  return fault("the class should go on or END, but " + seen(),
               "SELECT, FETCH and MAP stand in this order, then END and a newline");
}

bool ClassReader::read_defaults() {
  is_in_class_ = false;
  lexer_.advance();
  do {
    if (!read_map_line(outline_.defaults.emplace_back())) return false;
  } while (at(TOKEN_STRING));
  return expect(TOKEN_END, "END");
}

}  // namespace

// The outline -------------------------------------------------------------------------------------

std::string ClassOperand::shown() const { return kind == Kind::kText ? quoted(text) : text; }

std::optional<std::string> SelectItem::slot_name() const {
  const bool is_name =
      attr.operator_code == ZEMAD_OPERATOR_EQUAL && attr.operand.kind == Kind::kText;
  return is_name ? std::optional(attr.operand.text) : std::nullopt;
}

std::optional<std::string> ClassOutline::event_id() const {
  for (const SelectItem& item : selects) {
    if (item.slot_name() != "_event_id" || !item.value) continue;
    const ClassTest& value = *item.value;
    if (value.operator_code == ZEMAD_OPERATOR_EQUAL && value.operand.kind == Kind::kText) {
      return value.operand.text;
    }
  }
  return std::nullopt;
}

const char* operator_text(int operator_code) {
  constexpr std::array kTexts = {"?",  "=", "PREFIX", "SUFFIX", "!=",      ">",
                                 ">=", "<", "<=",     "EXISTS", "CONTAINS"};
  const auto row = static_cast<std::size_t>(operator_code);
  return kTexts[row < kTexts.size() ? row : 0];
}

ClassFileOutline read_class_outline(const SourceText& source) { return ClassReader(source).read(); }

}  // namespace zem::fmt
