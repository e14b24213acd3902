#include "adapters/logfile/common/ConstComponent.h"

#include "adapters/logfile/common/SysLogMsg.h"

ConstComponent::ConstComponent(const char* text) : FormatComponent(text), text_(fmtRep()) {}

int ConstComponent::matches(SysLogMsg& msg, const ConstComponent* /*next*/,
                            tvStrobj& /*value*/) const {
  const std::string_view word = msg.word();
  if (word.empty() || !word.starts_with(text_)) return 0;
  msg += static_cast<int>(text_.size());
  return 1;
}

std::string_view ConstComponent::select(std::string_view text) const {
  return text.substr(0, text.find(text_));
}
