/// Whole reads and writes at a place of a file: short counts and interruptions are gone on with.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <span>
#include <string_view>

#include "util/result.h"

namespace zem::agent {

/// A write that stays inside one block of this many bytes, aligned to it, happens whole or not at
/// all when the process is killed; a longer one may end at any boundary between two.
inline constexpr off_t kAtomicBlock = 4096;

[[nodiscard]] constexpr bool crosses_block(off_t at, std::size_t length) {
  return length > 0 && at / kAtomicBlock != (at + static_cast<off_t>(length) - 1) / kAtomicBlock;
}

/// Reads until `out` is full or the file ends; the bytes read.
[[nodiscard]] util::Result<std::size_t> read_at(int fd, off_t at, std::span<char> out);
[[nodiscard]] util::Status write_at(int fd, off_t at, std::string_view bytes);
/// Appends at the end of the file as it is at that moment, whoever else appends. When the bytes do
/// not fit, those that did are taken back. The descriptor stays in append mode until the end only.
[[nodiscard]] util::Status append_to(int fd, std::string_view bytes);
[[nodiscard]] util::Result<off_t> size_of(int fd);
[[nodiscard]] util::Status truncate_to(int fd, off_t size);

}  // namespace zem::agent
