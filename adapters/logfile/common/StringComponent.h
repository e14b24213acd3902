/// The variable "%s": one word, up to the first occurrence of the constant that follows it at once.
/// With a width ("%12s") it takes exactly that many characters of a word that has them.
#pragma once

#include <string_view>

#include "adapters/logfile/common/FormatComponent.h"

class StringComponent : public FormatComponent {
 public:
  /// `width` 0 is none.
  explicit StringComponent(const char* piece, int width = 0)
      : FormatComponent(piece), width_(width) {}

  /// The component for "%s", "%s*", "%s+" and the same with a width.
  [[nodiscard]] static FormatComponent* create(const char* piece);

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  [[nodiscard]] int variable() const override { return 1; }
  [[nodiscard]] ConstComponent* lookahead(tvList<FormatComponent*>& list, int index) const override;
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kWord; }
  [[nodiscard]] int width() const noexcept { return width_; }

 protected:
  /// Takes one word off the message, cut by `next` and the width; empty when there is none. The
  /// word is a look into the message.
  [[nodiscard]] std::string_view takeWord(SysLogMsg& msg, const ConstComponent* next) const;

 private:
  int width_;
};
