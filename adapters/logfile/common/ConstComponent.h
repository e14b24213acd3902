/// Literal text of a format line: matches a prefix of the word at the cursor, so never across
/// blanks. The same constant cuts the words of a variable that stands before it.
#pragma once

#include <string_view>

#include "adapters/logfile/common/FormatComponent.h"

class ConstComponent : public FormatComponent {
 public:
  explicit ConstComponent(const char* text);

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  [[nodiscard]] int isconst() const override { return 1; }
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kConstant; }

  /// The part of `text` before the first occurrence of this constant, all of it when there is none.
  /// Not to be asked of a constant without text.
  [[nodiscard]] std::string_view select(std::string_view text) const;
  [[nodiscard]] std::string_view text() const noexcept { return text_; }

 private:
  std::string_view text_;  ///< our own piece, whose text never changes
};
