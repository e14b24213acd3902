/// The variable "%s*": zero or more words, up to the first occurrence of the next constant of the
/// format, however far behind that stands. It always succeeds.
#pragma once

#include "adapters/logfile/common/StringComponent.h"

/// `Word` is the component that is repeated.
template <class Word = StringComponent>
class StarModifier : public Word {
 public:
  explicit StarModifier(const char* piece, int width = 0) : Word(piece, width) {}

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  [[nodiscard]] ConstComponent* lookahead(tvList<FormatComponent*>& list, int index) const override;
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kStar; }
};

extern template class StarModifier<StringComponent>;
