/// What the variables of a FORMAT captured from a message: places in its text, made into strings
/// only when someone reads them. One object serves all FORMATs of a set, message after
/// message, and uses its strings again: memory does not grow with the set, and a value that fits
/// into the buffer of an earlier one allocates nothing. FORMATs know the object and ask it whether
/// they have won; a match need not touch the winner (BM_Match/10000: a third of the time, since the
/// winner is in no cache). Nor are values moved that the matcher has written down (BM_Match/10: 3
/// of 100 ns), unless it goes on afterwards.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "util/strobj.h"

class FormatSpec;

namespace zem::format {

/// A part of a text.
struct Span {
  std::uint32_t begin;
  std::uint32_t length;
};

class Captures {
 public:
  /// Values that are kept; further variables of a FORMAT capture nothing.
  static constexpr std::size_t kMax = 64;

  /// Room for `values` of them on the way through a message.
  explicit Captures(std::size_t values) : taken_(values) {}

  // For the matcher, in this order:

  /// A message begins. `text` is borrowed until the next one, and changed by `end`.
  void begin(char* text) noexcept {
    winner_ = nullptr;
    text_ = text;
    count_ = 0;
    made_ = 0;
    runs_ = 0;
  }
  /// Where the matcher writes down the parts of the text that it takes.
  [[nodiscard]] Span* room() noexcept { return taken_.data(); }
  /// Part `k` may hold runs of ' '.
  void may_hold_runs(std::size_t k) noexcept { runs_ |= k < kMax ? std::uint64_t{1} << k : 0; }
  /// A FORMAT has matched; the first `count` parts in the room are its values. A better one may
  /// follow.
  void won(std::size_t count) noexcept {
    count_ = std::min(count, kMax);
    std::copy_n(taken_.begin(), count_, parts_.begin());
  }
  /// The message is through.
  void end() {
    if (runs_ != 0) fold();
  }

  // For the set and its FORMATs:

  /// From here on these are the values of `winner`, which may be null.
  void give_to(const FormatSpec* winner) noexcept { winner_ = winner; }
  [[nodiscard]] bool belong_to(const FormatSpec* spec) const noexcept { return winner_ == spec; }

  [[nodiscard]] std::size_t count() const noexcept { return count_; }
  /// Part `k`, counting from 0 and below `count`, as a view of the text; good until the next
  /// message. A block (byte_block.h) may be read at any byte of it.
  [[nodiscard]] std::string_view view(std::size_t k) const {
    return {text_ + parts_[k].begin, parts_[k].length};
  }
  /// The same as a string.
  [[nodiscard]] const tvStrobj& string(std::size_t k) const;

 private:
  void fold();

  const FormatSpec* winner_ = nullptr;
  char* text_ = nullptr;
  std::size_t count_ = 0;
  std::uint64_t runs_ = 0;  ///< bit k: of part k, on the way to the winner or elsewhere
  std::vector<Span> taken_;
  std::array<Span, kMax> parts_{};
  mutable std::uint64_t made_ = 0;  ///< bit k: string k is up to date
  mutable std::vector<tvStrobj> strings_;
};

}  // namespace zem::format
