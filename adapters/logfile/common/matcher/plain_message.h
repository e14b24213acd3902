/// A message as the compiled set reads it: every blank is a ' ', and none stands at either end. No
/// FORMAT can tell the difference, since a blank of a FORMAT matches any blanks and captured words
/// are joined by ' ' anyway. Runs of blanks stay as they are: most messages hold none, or only the
/// one in their time stamp, and to fold them beforehand costs all messages more than to notice them
/// on the way (BM_Match/10: 10 of 100 ns).
///
///     "  Nov  5 09:00:00\thost su: x \n"   ->   "Nov  5 09:00:00 host su: x" and a blank at the
///     end
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::format {

class PlainMessage {
 public:
  /// Takes a copy of `text`, up to its first NUL if there is one. The buffer is kept from message
  /// to message and grows to the longest.
  void assign(std::string_view text);

  /// The text up to its last character that is not blank, then a ' ' and a NUL whether or not the
  /// message goes on there, so that every word ends at a ' '. A block may be read at any byte of
  /// it; what comes behind the NUL is undefined. In front of it stands a NUL. Good until the next
  /// `assign`.
  [[nodiscard]] char* text() noexcept { return buffer_.data() + kBlockBytes; }
  [[nodiscard]] const char* text() const noexcept { return buffer_.data() + kBlockBytes; }
  /// Length up to the last character that is not blank.
  [[nodiscard]] std::size_t length() const noexcept { return length_; }
  /// True when nothing but blanks is left at `at`. A position past the blank at the end comes from
  /// a FORMAT that asks for a blank which this message may not have; that is no end.
  [[nodiscard]] bool ends_at(std::size_t at) const noexcept { return at >= length_ && at <= last_; }

 private:
  std::vector<char> buffer_ = std::vector<char>(kBlockBytes);  ///< a block in front of the text
  std::size_t length_ = 0;
  std::size_t last_ = 0;  ///< `length_`, and one more with blanks at the end
};

}  // namespace zem::format
