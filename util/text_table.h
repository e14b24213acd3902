/// Gives texts numbers: the first is 0, the next that is not yet there 1, and so on. What it knows
/// lies side by side in three arrays, because a table of many short texts is mostly waiting for
/// memory: with a node for each word, looking words up took a tenth of the time to start with
/// 10,000 classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zem::util {

class TextTable {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  struct Added {
    std::uint32_t number;
    bool is_new;
  };

  /// The number of `text`, which gets the next one when it has none. It is copied and may hold any
  /// bytes.
  Added add(std::string_view text);
  /// The number of `text`, or kNone.
  [[nodiscard]] std::uint32_t find(std::string_view text) const;

  [[nodiscard]] std::size_t size() const noexcept { return begins_.size(); }
  /// Valid until the next text is added.
  [[nodiscard]] std::string_view text(std::uint32_t number) const;
  /// Where the text stands among `texts`.
  [[nodiscard]] std::size_t begin(std::uint32_t number) const { return begins_[number]; }
  /// All texts, one behind the other.
  [[nodiscard]] const std::string& texts() const noexcept { return texts_; }
  /// The same for good; the table is empty afterwards.
  [[nodiscard]] std::string take_texts();
  /// Gives all memory back.
  void clear() { *this = TextTable(); }

 private:
  /// One place of the table. Few texts have the same hash, so that the text behind a place is
  /// looked at hardly ever in vain.
  struct Place {
    std::uint32_t hash = 0;
    std::uint32_t number = kNone;  ///< kNone: free
  };

  [[nodiscard]] static std::uint32_t hash_of(std::string_view text);
  [[nodiscard]] std::size_t place_of(std::string_view text, std::uint32_t hash) const;
  void grow();

  std::vector<Place> places_;  ///< a power of two, at most half of them taken
  std::vector<std::size_t> begins_;
  std::string texts_;
};

}  // namespace zem::util
