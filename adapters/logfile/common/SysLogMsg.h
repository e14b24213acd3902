/// One log message with a read cursor, on which the components of a format are tried. A blank is
/// what isspace(3) says in the "C" locale; a word is a run of anything else, bytes above 127
/// included. The message is built once and reused for every format: each try begins with `reset`.
#pragma once

#include <string_view>

#include "util/strobj.h"

class SysLogMsg : public tvStrobj {
 public:
  /// Copies `text` and puts the cursor on the first character that is not blank.
  explicit SysLogMsg(const char* text);
  SysLogMsg(const SysLogMsg&) = delete;  // the cursor points into our own text
  SysLogMsg& operator=(const SysLogMsg&) = delete;
  ~SysLogMsg() override = default;

  /// Cursor to the start of the text and past its leading blanks.
  void reset();
  /// True when nothing but blanks is left behind the cursor.
  [[nodiscard]] bool end() const;
  /// Moves the cursor by `n` characters. The caller keeps it inside the text.
  SysLogMsg& operator+=(int n);
  SysLogMsg& operator-=(int n);
  /// Blanks at the cursor.
  [[nodiscard]] int whitesp() const;
  /// The word at the cursor, empty on a blank and at the end.
  [[nodiscard]] tvStrobj peek() const;
  /// The same as a look into the message, valid as long as the message.
  [[nodiscard]] std::string_view word() const;

 private:
  const char* start_;
  const char* limit_;  ///< the terminating NUL
  const char* cursor_;
};

namespace zem::format {

/// isspace(3) in the "C" locale, for any byte.
[[nodiscard]] constexpr bool is_blank(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace zem::format
