#include "adapters/logfile/common/StringComponent.h"

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/shared_components.h"
#include "util/text.h"

using zem::format::make_counted;
using zem::format::shared_components;

namespace {

/// "%12s", "%3s*", "%3s+": digits behind the percent sign. The last character is the modifier.
FormatComponent* create_with_width(const char* piece) {
  const std::string_view text = piece;
  const int width = zem::util::saturating_atoi(text.substr(1));
  switch (text.back()) {
    case '*':
      return make_counted<StarModifier<>>(piece, width);
    case '+':
      return make_counted<PlusModifier<>>(piece, width, make_counted<StarModifier<>>(piece, width));
    default:
      return make_counted<StringComponent>(piece, width);
  }
}

}  // namespace

FormatComponent* StringComponent::create(const char* piece) {
  const std::string_view text = piece;
  if (text.size() > 1 && text[1] >= '0' && text[1] <= '9') return create_with_width(piece);
  if (text == "%s*") return shared_components().star.get();
  if (text == "%s+") return shared_components().plus.get();
  if (text.size() > 2) error("bad %s specification", piece);
  return shared_components().string.get();
}

int StringComponent::matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const {
  const std::string_view word = takeWord(msg, next);
  value.append(word);
  return word.empty() ? 0 : 1;
}

ConstComponent* StringComponent::lookahead(tvList<FormatComponent*>& list, int index) const {
  if (width_ != 0) return emptyConst();
  list[index];
  list++;
  if (!list.has() || list()->isconst() == 0) return emptyConst();
  return static_cast<ConstComponent*>(list());
}

std::string_view StringComponent::takeWord(SysLogMsg& msg, const ConstComponent* next) const {
  std::string_view word = msg.word();
  if (!next->text().empty()) word = next->select(word);
  if (width_ > 0) {
    const auto width = static_cast<std::size_t>(width_);
    word = word.size() < width ? std::string_view() : word.substr(0, width);
  }
  msg += static_cast<int>(word.size());
  return word;
}
