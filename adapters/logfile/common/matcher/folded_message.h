/// A message as the compiled set reads it: without leading blanks, every run of blanks folded into
/// one ' '. Nothing that a FORMAT can tell apart is lost: a blank of a FORMAT matches a run as a
/// whole, a word holds no blank, and captured words are joined by single blanks anyway. What is
/// gained: a FORMAT's text and blanks are compared as plain bytes, and a captured value is a part
/// of the folded text as it stands.
///
///     "  Nov  5 09:00:00\thost su: x \n"   ->   "Nov 5 09:00:00 host su: x" and a blank at the end
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zem::format {

class FoldedMessage {
 public:
  /// Takes a copy of `text`, up to its NUL; null is empty. The buffer is kept from message to
  /// message and grows to the longest.
  void assign(const char* text);

  /// The text up to its last character that is not blank, then a ' ' and a NUL whether or not the
  /// message goes on there, so that every word ends at a ' '. A block may be read at any byte of
  /// it; what comes behind the NUL is undefined. Good until the next `assign`.
  [[nodiscard]] const char* text() const noexcept { return buffer_.data(); }
  /// Length up to the last character that is not blank.
  [[nodiscard]] std::size_t length() const noexcept { return length_; }
  /// True when nothing but blanks is left at `at`. A position past the blank at the end comes from
  /// a FORMAT that asks for a blank which this message may not have; that is no end.
  [[nodiscard]] bool ends_at(std::size_t at) const noexcept { return at >= length_ && at <= last_; }

 private:
  std::vector<char> buffer_;
  std::size_t length_ = 0;
  std::size_t last_ = 0;  ///< `length_`, and one more with blanks at the end
};

}  // namespace zem::format
