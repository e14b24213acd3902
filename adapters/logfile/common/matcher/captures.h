/// What the variables of a FORMAT captured from a message: places in its folded text, made into
/// strings only when someone reads them. One object serves all FORMATs of a set, message after
/// message, and uses its strings again: memory does not grow with the set, and a value that fits
/// into the buffer of an earlier one allocates nothing. FORMATs know the object and ask it whether
/// they have won; a match need not touch the winner (BM_Match/10000: a third of the time, since the
/// winner is in no cache).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
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

  /// Takes the parts of `text`, at most `kMax` of them, which belong to no FORMAT yet; `text` is
  /// borrowed until the next `assign`.
  void assign(const char* text, std::span<const Span> parts);

  /// From here on these are the values of `winner`, which may be null.
  void give_to(const FormatSpec* winner) noexcept { winner_ = winner; }
  [[nodiscard]] bool belong_to(const FormatSpec* spec) const noexcept { return winner_ == spec; }

  [[nodiscard]] std::size_t count() const noexcept { return count_; }
  /// Part `k`, counting from 0 and below `count`, as a view of the text.
  [[nodiscard]] std::string_view view(std::size_t k) const {
    return {text_ + parts_[k].begin, parts_[k].length};
  }
  /// The same as a string, good until the next `assign`.
  [[nodiscard]] const tvStrobj& string(std::size_t k) const;

 private:
  const FormatSpec* winner_ = nullptr;
  const char* text_ = nullptr;
  std::size_t count_ = 0;
  std::array<Span, kMax> parts_{};
  mutable std::uint64_t made_ = 0;  ///< bit k: string k is up to date
  mutable std::vector<tvStrobj> strings_;
};

}  // namespace zem::format
