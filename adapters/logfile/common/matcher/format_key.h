/// FORMATs as sequences that sort and share their beginnings: what the set compiler works on. Two
/// FORMATs that begin with the same elements do the same to every message that far.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

#include "adapters/logfile/common/FormatComponent.h"

class FormatSpec;

namespace zem::format {

/// Below `kFirstVariable` a byte of text, where a ' ' stands for a run of blanks; from there on the
/// number of a variable in the `VariableTable`.
using Element = std::uint32_t;
inline constexpr Element kFirstVariable = 256;

/// A component and its lookahead. Equal variables are one element; the lookahead belongs to it,
/// because the same "%s" takes different words before different constants.
struct KeyVariable {
  ComponentKind kind;    ///< of a variable; kConstant for a constant without text
  int width;             ///< 0: none
  std::string_view cut;  ///< a look into the FORMAT's constant; empty: nothing cuts

  auto operator<=>(const KeyVariable&) const = default;  // NOLINT(modernize-use-nullptr): no 0 here
};

/// Gives equal variables one number.
class VariableTable {
 public:
  [[nodiscard]] Element element_of(const KeyVariable& variable);
  /// In the order of their numbers.
  [[nodiscard]] const std::vector<KeyVariable>& variables() const noexcept { return variables_; }

 private:
  std::map<KeyVariable, Element> elements_;
  std::vector<KeyVariable> variables_;
};

/// Appends the elements of `spec` to `elements`. Returns false, and appends nothing, for a FORMAT
/// that no message can match: it begins with a blank, has two blanks in a row or a blank inside a
/// constant.
[[nodiscard]] bool append_key(const FormatSpec& spec, VariableTable& table,
                              std::vector<Element>& elements);

}  // namespace zem::format
