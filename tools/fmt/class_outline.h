/// A class file as it is written: every class with the places of its items, also of a file that the
/// kernel refuses. The reader takes its tokens from the kernel's scanner and goes on behind a fault
/// at the next class.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/select.h"
#include "tools/fmt/finding.h"

namespace zem::fmt {

struct ClassOperand {
  enum class Kind { kText, kNumber, kKeyword, kName, kKey, kValue, kFetch };

  Kind kind = Kind::kText;
  std::string text;  ///< of a text; of everything else, as it is written
  int number = 0;    ///< of a number, and of the item that is referred to
  Span where;

  /// As it would be written: a text in quotes.
  [[nodiscard]] std::string shown() const;
};

struct ClassTest {
  int operator_code = ZEMAD_OPERATOR_EQUAL;
  ClassOperand operand;
  Span where;
};

struct SelectItem {
  ClassTest attr;
  std::optional<ClassTest> key;
  std::optional<ClassTest> value;
  Span where;

  /// The name of the slot that the item asks for; nothing when it asks in another way.
  [[nodiscard]] std::optional<std::string> slot_name() const;
};

struct FetchItem {
  Span where;
};

struct MapLine {
  std::string slot;
  std::optional<std::string> format;  ///< of PRINTF
  std::vector<ClassOperand> operands;
  Span where;         ///< the slot's name
  Span format_where;  ///< of PRINTF
};

struct ClassOutline {
  std::string name;
  Span where;  ///< the name
  std::vector<SelectItem> selects;
  std::vector<FetchItem> fetches;
  std::vector<MapLine> maps;
  bool is_whole = false;  ///< read to its end without a fault

  [[nodiscard]] bool is_discard() const { return name == "*DISCARD*"; }
  /// The k of ATTR(=,"_event_id"), VALUE(=,"k"); nothing when no item asks for that.
  [[nodiscard]] std::optional<std::string> event_id() const;
};

struct ClassFileOutline {
  std::vector<ClassOutline> classes;  ///< in file order
  std::vector<MapLine> defaults;
  std::vector<Finding> findings;
};

[[nodiscard]] ClassFileOutline read_class_outline(const SourceText& source);

/// "=", "PREFIX", ...
[[nodiscard]] const char* operator_text(int operator_code);

}  // namespace zem::fmt
