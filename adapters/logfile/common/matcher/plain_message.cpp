// Most messages hold no other blank than ' ' but their newline: they are copied, and seen to be so,
// sixteen bytes at a time without a decision on the way.
#include "adapters/logfile/common/matcher/plain_message.h"

#include <algorithm>
#include <cstring>

#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/matcher/byte_block.h"

namespace zem::format {

namespace {

/// A block in front of the text; behind it the ' ', the NUL and a block that begins at the last of
/// them.
constexpr std::size_t kPaddingBytes = kBlockBytes + 2 + kBlockBytes;

std::string_view without_leading_blanks(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view without_trailing_blanks(std::string_view text) {
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

/// Copies `text` to `to`. True when it is known to hold neither a NUL nor a blank other than ' ';
/// a text of less than a block is not looked into.
bool copy_plain(char* to, std::string_view text) {
  if (text.size() < kBlockBytes) {
    text.copy(to, text.size());
    return false;
  }
  const std::size_t last = text.size() - kBlockBytes;
  ByteBlock least(text.data() + last);
  least.store(to + last);
  for (std::size_t i = 0; i < last; i += kBlockBytes) {
    const ByteBlock here(text.data() + i);
    here.store(to + i);
    least = least.smaller(here);
  }
  return least.smaller(ByteBlock('\r')).equal(least) == 0;
}

}  // namespace

void PlainMessage::assign(std::string_view text) {
  const std::string_view begun = without_leading_blanks(text);
  const std::string_view body = without_trailing_blanks(begun);
  const std::size_t bytes = body.size() + kPaddingBytes;
  if (buffer_.size() < bytes) buffer_.resize(bytes);
  if (!copy_plain(PlainMessage::text(), body)) {
    const std::size_t nul = body.find('\0');
    if (nul != body.npos) return assign(body.substr(0, nul));
    std::replace_if(PlainMessage::text(), PlainMessage::text() + body.size(), is_blank, ' ');
  }
  length_ = body.size();
  last_ = length_ + (body.size() < begun.size() ? 1 : 0);
  std::memcpy(PlainMessage::text() + length_, " ", 2);
}

}  // namespace zem::format
