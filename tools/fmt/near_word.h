/// Which known word somebody probably meant.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <string_view>

namespace zem::fmt {

/// Insertions, deletions and replacements of letters that lead from one to the other; case does not
/// count. A text too long to be any word is far from all.
[[nodiscard]] std::size_t distance(std::string_view from, std::string_view to);

/// The element whose word, found by `word_of`, is nearest to `word`; the end of `known` when even
/// that one differs in more than a third of its letters.
template <class Range, class WordOf>
[[nodiscard]] auto nearest_word(std::string_view word, const Range& known, WordOf word_of) {
  const auto distance_to = [&](const auto& element) {
    return distance(word, std::invoke(word_of, element));
  };
  const auto nearest = std::ranges::min_element(known, {}, distance_to);
  if (nearest == std::end(known)) return nearest;
  const std::string_view found = std::invoke(word_of, *nearest);
  return distance_to(*nearest) <= found.size() / 3 ? nearest : std::end(known);
}

}  // namespace zem::fmt
