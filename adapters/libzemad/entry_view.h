/// Looks into the value of an entry, never beyond its buffer.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "adapters/libzemad/configuration.h"

namespace zem::kernel {

[[nodiscard]] inline bool is_text(const AttributeEntry* entry) {
  return entry != nullptr && entry->Type == ZEMAD_TYPE_STRING;
}

[[nodiscard]] inline bool is_number(const AttributeEntry* entry) {
  return entry != nullptr && (entry->Type == ZEMAD_TYPE_INT || entry->Type == ZEMAD_TYPE_UINT);
}

/// The value's bytes up to the first NUL, whatever the type; empty without a value.
[[nodiscard]] inline std::string_view text_of(const AttributeEntry& entry) {
  if (entry.Value == nullptr) return {};
  const char* text = static_cast<const char*>(entry.Value);
  return {text, ::strnlen(text, entry.Length)};
}

/// The value's first four bytes; what the value does not have counts as zero.
[[nodiscard]] inline std::uint32_t word_of(const AttributeEntry& entry) {
  std::uint32_t word = 0;
  if (entry.Value != nullptr) {
    std::memcpy(&word, entry.Value, entry.Length < sizeof word ? entry.Length : sizeof word);
  }
  return word;
}

[[nodiscard]] inline std::int32_t int_of(const AttributeEntry& entry) {
  return static_cast<std::int32_t>(word_of(entry));
}

}  // namespace zem::kernel
