#include "adapters/logfile/common/PlusModifier.h"

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"

template <class Word>
int PlusModifier<Word>::matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const {
  if (Word::matches(msg, next, value) == 0) return 0;
  const int blanks = msg.whitesp();
  if (blanks == 0) return 1;
  msg += blanks;
  tvStrobj rest = "";
  star_->matches(msg, next, rest);
  if (rest.length() == 0) {
    msg -= blanks;
  } else {
    value.append(" ");
    value.append(rest.view());
  }
  return 1;
}

template <class Word>
ConstComponent* PlusModifier<Word>::lookahead(tvList<FormatComponent*>& list, int index) const {
  return star_->lookahead(list, index);
}

template class PlusModifier<StringComponent>;
