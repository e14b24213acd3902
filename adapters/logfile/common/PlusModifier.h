/// The variable "%s+": one or more words; the first as "%s" takes it, the rest as "%s*" does.
#pragma once

#include "adapters/logfile/common/StarModifier.h"
#include "adapters/logfile/common/ref.h"

/// `Word` is the component that is repeated.
template <class Word = StringComponent>
class PlusModifier : public Word {
 public:
  /// `star` takes the words after the first; a counted reference is kept.
  PlusModifier(const char* piece, int width, StarModifier<Word>* star)
      : Word(piece, width), star_(star) {}

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  /// That of its star.
  [[nodiscard]] ConstComponent* lookahead(tvList<FormatComponent*>& list, int index) const override;
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kPlus; }

 private:
  zem::format::Ref<StarModifier<Word>> star_;
};

extern template class PlusModifier<StringComponent>;
