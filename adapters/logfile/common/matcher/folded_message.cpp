// Most messages have nothing to fold but their newline: they are copied and looked through sixteen
// bytes at a time. Only what stands between two longer runs of blanks is moved.
#include "adapters/logfile/common/matcher/folded_message.h"

#include <algorithm>
#include <cstring>

#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::format {

namespace {

/// The ' ' and the NUL behind the text, and a block that begins at the last of them.
constexpr std::size_t kPaddingBytes = 2 + kBlockBytes;

std::string_view without_leading_blanks(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view without_trailing_blanks(std::string_view text) {
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

/// The first byte at or behind `from` that does not stay as it is: a blank other than ' ', or a ' '
/// behind another. `length` when there is none. What stands before `from` is no blank.
std::size_t find_fold(const char* text, std::size_t from, std::size_t length) {
  ByteMask carry = 0;  // the last byte of the block before was a ' '
  for (; from < length; from += kBlockBytes) {
    const ByteBlock here(text + from);
    const ByteMask spaces = here.equal(' ');
    const ByteMask folds = (spaces & (spaces << 1U | carry)) | here.between('\t', '\r');
    if (folds != 0) return std::min(from + first_in(folds), length);
    carry = spaces >> (kBlockBytes - 1);
  }
  return length;
}

/// Folds the text from its first fold on, in place; returns its new length.
std::size_t fold(char* text, std::size_t from, std::size_t length) {
  std::size_t to = from;
  while (from < length) {
    if (text[to - 1] != ' ') text[to++] = ' ';  // the text does not begin with a blank
    while (is_blank(text[from])) ++from;
    const std::size_t next = find_fold(text, from, length);
    std::memmove(text + to, text + from, next - from);
    to += next - from;
    from = next;
  }
  return to;
}

}  // namespace

void FoldedMessage::assign(const char* text) {
  const std::string_view begun = without_leading_blanks(text == nullptr ? "" : text);
  const std::string_view body = without_trailing_blanks(begun);
  const std::size_t bytes = body.size() + kPaddingBytes;
  if (buffer_.size() < bytes) buffer_.resize(bytes);
  char* const copy = buffer_.data();
  std::memcpy(copy, body.data(), body.size());
  copy[body.size()] = ' ';
  length_ = body.size();
  const std::size_t first = find_fold(copy, 0, length_);
  if (first < length_) length_ = fold(copy, first, length_);
  last_ = length_ + (body.size() < begun.size() ? 1 : 0);
  std::memcpy(copy + length_, " ", 2);
}

}  // namespace zem::format
