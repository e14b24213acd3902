/// What the class language means: the builder turns what the grammar has recognised into the
/// kernel's records and lists, checks item numbers and references, and reports everything that is
/// wrong. Functions that are handed records or texts (util/heap.h) own them from then on, whether
/// they succeed or fail; those that return null or false have reported why.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/parse_config.h"

namespace zem::kernel {

class ClassScanner;

/// What a rule names: a kind and an index of that kind.
struct Operand {
  int access;  ///< ZEMAD_Access
  int index;   ///< constant, keyword row, or number of an item, from 0
};

class ClassBuilder {
 public:
  static constexpr int kSyntaxError = 8;
  static constexpr int kBadReference = 4;
  static constexpr int kBadNumber = 2;

  /// The scanner says where in the file we are, for messages.
  ClassBuilder(const ClassScanner& scanner, std::string_view file_name);

  /// 0, or the code of the last error found.
  [[nodiscard]] int parse_errors() const { return parse_errors_; }
  void yyerror(const char* message);
  /// True when items stand in the right order: `given` is what the file says.
  bool zemad_check_number(int given, int expected);
  /// True when item `index` (from 0) is one of `count` items.
  bool zemad_check_access(int index, int count);

  // The file
  bool begin_file();
  void empty_file();
  void end_file();

  // Statements
  /// Starts the counts of items that references are checked against.
  void begin_class();
  Config* make_class(char* name, SL_List* selects, SL_List* fetches, SL_List* maps);
  /// A null class is one that was passed over.
  bool add_class(Config* config);
  bool add_default(Map* map);

  // SELECT
  SelectOperation* attr_test(int operator_code, const Operand& operand);
  /// A KEY or a VALUE test.
  SelectOperation* entry_test(int operator_code, const Operand& operand);
  Select* select(int number, SelectOperation* attr, SelectOperation* key, SelectOperation* value);
  /// `first = second`: ATTR(=, first), VALUE(=, second).
  Select* short_select(int number, const Operand& first, const Operand& second);
  /// Appends, to a new list when there is none yet; so do the next ones.
  SL_List* add_select(SL_List* selects, Select* select);

  // FETCH
  Expression* leaf(const Operand& operand);
  Expression* call(ZEMAD_EvalRoutine routine, std::initializer_list<Expression*> arguments);
  Fetch* fetch(int number, Expression* expression);
  SL_List* add_fetch(SL_List* fetches, Fetch* fetch);

  // MAP
  Variable* variable(const Operand& operand);
  SL_List* add_variable(SL_List* variables, Variable* variable);
  Map* assignment(char* slot_name, Variable* variable);
  Map* default_assignment(char* slot_name, Variable* variable);
  Map* printf(char* slot_name, char* format, SL_List* variables);
  SL_List* add_map(SL_List* maps, Map* map);

  // Words
  char* copy(std::string_view text);
  bool constant(std::string_view text, Operand& operand);
  bool constant(int number, Operand& operand);
  /// `number` counts from 1, as the file does.
  bool attr_reference(ZEMAD_Access access, int number, Operand& operand);
  bool fetch_reference(int number, Operand& operand);

 private:
  bool reference(ZEMAD_Access access, int number, int count, Operand& operand);
  bool constant_at(int index, Operand& operand);
  SelectOperation* checked(SelectOperation* operation, const char* message);
  SL_List* only(Variable* variable);
  Map* assign(char* slot_name, Variable* variable, const char* failure);
  Map* make_map(char* slot_name, char* format, SL_List* variables, const char* failure);
  template <auto Free, class Record>
  SL_List* append(SL_List* list, Record* element, const char* creation_failure);
  template <auto Free, class Record>
  bool append_to_global(SL_List* list, Record* element);

  const ClassScanner& scanner_;
  std::string file_name_;
  int parse_errors_ = 0;
  int attr_last_pos_ = 0;   ///< SELECT items of this class taken so far
  int fetch_last_pos_ = 0;  ///< FETCH items of this class taken so far
};

}  // namespace zem::kernel
