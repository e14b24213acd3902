#include "util/text_table.h"

#include <functional>
#include <utility>

namespace zem::util {
namespace {

constexpr std::size_t kPlacesMin = 64;

}  // namespace

std::uint32_t TextTable::hash_of(std::string_view text) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
}

/// Where `text` is, or the free place where it would be. Not to be asked of a table without places.
std::size_t TextTable::place_of(std::string_view wanted, std::uint32_t hash) const {
  const std::size_t last = places_.size() - 1;
  std::size_t at = hash & last;
  while (places_[at].number != kNone &&
         (places_[at].hash != hash || text(places_[at].number) != wanted)) {
    at = (at + 1) & last;
  }
  return at;
}

TextTable::Added TextTable::add(std::string_view text) {
  if (2 * begins_.size() >= places_.size()) grow();
  const std::uint32_t hash = hash_of(text);
  Place& place = places_[place_of(text, hash)];
  if (place.number != kNone) return {place.number, false};
  place = {hash, static_cast<std::uint32_t>(begins_.size())};
  begins_.push_back(texts_.size());
  texts_.append(text);
  return {place.number, true};
}

std::uint32_t TextTable::find(std::string_view text) const {
  return places_.empty() ? kNone : places_[place_of(text, hash_of(text))].number;
}

std::string_view TextTable::text(std::uint32_t number) const {
  const std::size_t begin = begins_[number];
  const std::size_t end = number + 1 < begins_.size() ? begins_[number + 1] : texts_.size();
  return std::string_view(texts_).substr(begin, end - begin);
}

std::string TextTable::take_texts() {
  std::string texts = std::move(texts_);
  clear();
  return texts;
}

void TextTable::grow() {
  const std::vector<Place> old =
      std::exchange(places_, std::vector<Place>(places_.empty() ? kPlacesMin : 2 * places_.size()));
  const std::size_t last = places_.size() - 1;
  for (const Place& place : old) {
    if (place.number == kNone) continue;
    std::size_t at = place.hash & last;
    while (places_[at].number != kNone) at = (at + 1) & last;
    places_[at] = place;
  }
}

}  // namespace zem::util
