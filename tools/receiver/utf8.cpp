#include "tools/receiver/utf8.h"

#include <cstdint>

namespace zem::receiver {
namespace {

/// The well-formed sequences by their first byte: their length and the range of the second byte,
/// which is narrower where overlong forms, surrogates and values above U+10FFFF would begin.
struct Lead {
  unsigned char first;
  unsigned char last;
  std::size_t length;
  unsigned char second_min;
  unsigned char second_max;
};
constexpr Lead kLeads[] = {{0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
                           {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F},
                           {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
                           {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};

unsigned char byte_at(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool is_continued(std::string_view text, const Lead& lead) {
  if (text.size() < lead.length) return false;
  const unsigned char second = byte_at(text, 1);
  if (second < lead.second_min || second > lead.second_max) return false;
  for (std::size_t i = 2; i < lead.length; ++i) {
    if ((byte_at(text, i) & 0xC0U) != 0x80U) return false;
  }
  return true;
}

}  // namespace

std::size_t utf8_sequence_length(std::string_view text) {
  const unsigned char first = byte_at(text, 0);
  if (first < 0x80) return 1;
  for (const Lead& lead : kLeads) {
    if (first < lead.first || first > lead.last) continue;
    return is_continued(text, lead) ? lead.length : 0;
  }
  return 0;
}

bool is_control_sequence(std::string_view sequence) {
  const unsigned char first = byte_at(sequence, 0);
  if (sequence.size() == 1) return first < 0x20 || first == 0x7F;
  return sequence.size() == 2 && first == 0xC2 && byte_at(sequence, 1) < 0xA0;
}

}  // namespace zem::receiver
