#include "adapters/logfile/common/StarModifier.h"

#include <string_view>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"

// A word that begins with the constant is cut to nothing and ends the star; the blanks before it
// are given back for the next component. After a word that was cut in its middle the constant
// follows directly, and the star ends too: "a b: c" gives "a b" before ":".
template <class Word>
int StarModifier<Word>::matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const {
  if (Word::matches(msg, next, value) == 0) return 1;
  for (;;) {
    const int blanks = msg.whitesp();
    if (blanks == 0) return 1;
    msg += blanks;
    const std::string_view word = this->takeWord(msg, next);
    if (word.empty()) {
      msg -= blanks;
      return 1;
    }
    value.append(" ");
    value.append(word);
  }
}

template <class Word>
ConstComponent* StarModifier<Word>::lookahead(tvList<FormatComponent*>& list, int index) const {
  list[index];
  for (list++; list.has(); list++) {
    if (list()->isconst() != 0) return static_cast<ConstComponent*>(list());
  }
  return FormatComponent::emptyConst();
}

template class StarModifier<StringComponent>;
