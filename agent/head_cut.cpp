#include "agent/head_cut.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/event_filter.h"
#include "agent/file_blocks.h"
#include "util/text.h"

// Cutting the gap G off the top of G L1 L2 L3 (each L as long as the gap or shorter):
//
//   G  L1 L2 L3               the record goes behind the live bytes; with it the cut has happened
//   G  L1 L2 L3 R(moved 0)    L1 is copied to the top; until the record says so, L1 is still there
//   L1 L1 L2 L3 R(moved 1)    and the copying can be done again
//   L1 L2 L2 L3 R(moved 2)
//   L1 L2 L3 L3 R(moved 3)    cut behind the last of the copies, and record and remains are gone
//   L1 L2 L3
//
// The record reads as an event, so that others can append behind it, but begins with a byte that no
// event begins with. Its fields lie in one block of the file and change whole or not at all.

namespace zem::agent {
namespace {

using util::Result;
using util::Status;

constexpr char kRecordByte = '\x02';
constexpr std::string_view kRecordWord =
    "\x02"
    "cut ";
constexpr std::size_t kDigits = 16;
constexpr std::size_t kRecordBytes = kRecordWord.size() + kDigits + 1 + kDigits + 1;
constexpr std::size_t kMovedOffset = kRecordWord.size() + kDigits + 1;
constexpr std::size_t kCopyBytes = 65536;

struct Cut {
  off_t gap = 0;        ///< bytes to remove
  off_t moved = 0;      ///< live bytes that are in their new place
  off_t live_end = 0;   ///< where the live bytes ended
  off_t record_at = 0;  ///< where the record's word begins, behind the padding
};

std::string digits(off_t number) {
  return util::format_text("%016llx", static_cast<unsigned long long>(number));
}

std::optional<off_t> parse_digits(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + kDigits;
  const auto result = std::from_chars(text.data(), end, number, 16);
  if (result.ec != std::errc() || result.ptr != end || number > INT64_MAX / 4) return std::nullopt;
  return static_cast<off_t>(number);
}

std::string record_of(const Cut& cut) {
  return std::string(kRecordWord) + digits(cut.gap) + ' ' + digits(cut.moved) + kEventEnd;
}

/// Bytes in front of a record at `at` that bring it into one block.
std::size_t padding(off_t at) {
  if (!crosses_block(at, kRecordBytes)) return 0;
  return static_cast<std::size_t>(kAtomicBlock - at % kAtomicBlock);
}

/// Leaves the record; `cut` is complete then. What others have appended since the size was looked
/// at stands in front of the record and is live: where the record begins is known only afterwards.
Status begin(int fd, Cut& cut) {
  const std::string pad(padding(cut.live_end), kRecordByte);
  Status left = append_to(fd, pad + record_of(cut));
  if (!left.ok()) return left;
  const off_t end = ::lseek(fd, 0, SEEK_CUR);
  if (end == -1) return util::last_error("seek", "cache file");
  cut.record_at = end - static_cast<off_t>(kRecordBytes);
  cut.live_end = cut.record_at - static_cast<off_t>(pad.size());
  return {};
}

/// Copies `length` bytes, in pieces in file order.
Status copy_down(int fd, off_t from, off_t to, off_t length) {
  std::vector<char> buffer(std::min(kCopyBytes, static_cast<std::size_t>(length)));
  for (off_t done = 0; done < length;) {
    const auto want = std::min<std::size_t>(buffer.size(), static_cast<std::size_t>(length - done));
    const auto got = read_at(fd, from + done, {buffer.data(), want});
    if (!got) return got.error();
    if (got.value() == 0) return util::Error{"read", "cache file", EIO};
    Status written = write_at(fd, to + done, {buffer.data(), got.value()});
    if (!written.ok()) return written;
    done += static_cast<off_t>(got.value());
  }
  return {};
}

Status move_live_bytes(int fd, Cut& cut) {
  const off_t live = cut.live_end - cut.gap;
  while (cut.moved < live) {
    const off_t length = std::min(cut.gap, live - cut.moved);
    Status done = copy_down(fd, cut.moved + cut.gap, cut.moved, length);
    if (!done.ok()) return done;
    cut.moved += length;
    done = write_at(fd, cut.record_at + static_cast<off_t>(kMovedOffset), digits(cut.moved));
    if (!done.ok()) return done;
  }
  return {};
}

/// Brings along what others have appended behind the record, until no more comes; the new size.
Result<off_t> move_appended_bytes(int fd, const Cut& cut) {
  off_t from = cut.record_at + static_cast<off_t>(kRecordBytes);
  off_t to = cut.moved;
  for (;;) {
    const auto size = size_of(fd);
    if (!size) return size.error();
    if (size.value() <= from) return to;
    const off_t length = size.value() - from;
    const Status copied = copy_down(fd, from, to, length);
    if (!copied.ok()) return copied.error();
    from += length;
    to += length;
  }
}

Status run(int fd, Cut& cut) {
  Status moved = move_live_bytes(fd, cut);
  if (!moved.ok()) return moved;
  const auto size = move_appended_bytes(fd, cut);
  return size ? truncate_to(fd, size.value()) : size.error();
}

/// The cut whose record is the end of `tail`, the end of a file of `size` bytes.
std::optional<Cut> parse_record(std::string_view tail, off_t size) {
  if (tail.size() < kRecordBytes || tail.back() != kEventEnd) return std::nullopt;
  const std::string_view record = tail.substr(tail.size() - kRecordBytes);
  const auto gap = parse_digits(record.substr(kRecordWord.size()));
  const auto moved = parse_digits(record.substr(kMovedOffset));
  if (!record.starts_with(kRecordWord) || !gap || !moved) return std::nullopt;
  const std::size_t before = tail.size() - kRecordBytes;
  const std::size_t live = tail.substr(0, before).find_last_not_of(kRecordByte);
  if (live == std::string_view::npos || tail[live] != kEventEnd) return std::nullopt;
  const std::size_t pad = before - live - 1;
  Cut cut{*gap, *moved, size - static_cast<off_t>(kRecordBytes + pad), 0};
  cut.record_at = size - static_cast<off_t>(kRecordBytes);
  const bool is_possible = cut.gap > 0 && cut.gap + cut.moved <= cut.live_end;
  return is_possible ? std::optional(cut) : std::nullopt;
}

/// The cut whose record ends at `end`.
std::optional<Cut> cut_ending_at(int fd, off_t end) {
  std::array<char, 2 * kRecordBytes> tail{};
  const auto length = std::min<off_t>(end, tail.size());
  const auto got = read_at(fd, end - length, {tail.data(), static_cast<std::size_t>(length)});
  if (!got) return std::nullopt;
  return parse_record({tail.data(), got.value()}, end);
}

/// The cut whose record is in the file, wherever: others may have appended behind it.
std::optional<Cut> find_cut(int fd) {
  std::vector<char> block(kCopyBytes);
  for (off_t at = 0;; at += static_cast<off_t>(block.size() - kRecordWord.size())) {
    const auto got = read_at(fd, at, block);
    if (!got) return std::nullopt;
    const std::string_view text(block.data(), got.value());
    for (auto word = text.find(kRecordWord); word != text.npos;
         word = text.find(kRecordWord, word + 1)) {
      const auto cut = cut_ending_at(fd, at + static_cast<off_t>(word + kRecordBytes));
      if (cut) return cut;
    }
    if (text.size() < block.size()) return std::nullopt;
  }
}

}  // namespace

Status cut_head(int fd, off_t bytes) {
  const auto size = size_of(fd);
  if (!size) return size.error();
  if (bytes <= 0) return {};
  if (bytes >= size.value()) return truncate_to(fd, 0);
  Cut cut{bytes, 0, size.value(), 0};
  Status begun = begin(fd, cut);
  return begun.ok() ? run(fd, cut) : begun;
}

bool ends_in_unfinished_cut(int fd) {
  const auto size = size_of(fd);
  return size && cut_ending_at(fd, size.value()).has_value();
}

Status finish_cut(int fd) {
  std::optional<Cut> cut = find_cut(fd);
  return cut ? run(fd, *cut) : Status();
}

}  // namespace zem::agent
