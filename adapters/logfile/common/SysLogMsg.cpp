#include "adapters/logfile/common/SysLogMsg.h"

#include <algorithm>

using zem::format::is_blank;

SysLogMsg::SysLogMsg(const char* text)
    : tvStrobj(text == nullptr ? "" : text),
      start_(getString()),
      limit_(start_ + std::string_view(start_).size()),
      cursor_(start_) {
  reset();
}

void SysLogMsg::reset() {
  cursor_ = start_;
  cursor_ += whitesp();
}

bool SysLogMsg::end() const { return cursor_ + whitesp() == limit_; }

SysLogMsg& SysLogMsg::operator+=(int n) {
  cursor_ += n;
  return *this;
}

SysLogMsg& SysLogMsg::operator-=(int n) {
  cursor_ -= n;
  return *this;
}

int SysLogMsg::whitesp() const {
  const char* const stop = std::find_if_not(cursor_, limit_, is_blank);
  return static_cast<int>(stop - cursor_);
}

tvStrobj SysLogMsg::peek() const { return tvStrobj(word()); }

std::string_view SysLogMsg::word() const {
  const char* const stop = std::find_if(cursor_, limit_, is_blank);
  return {cursor_, static_cast<std::size_t>(stop - cursor_)};
}
