#include "tools/fmt/known_keys.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <numeric>
#include <vector>

namespace zem::fmt {
namespace {

constexpr std::array kKeys = {
    KnownKey{"AdapterCdsFile", ValueKind::kText},
    KnownKey{"AdapterErrorFile", ValueKind::kText},
    KnownKey{"BufEvtMaxSize", ValueKind::kLeadingDigit},
    KnownKey{"BufEvtPath", ValueKind::kText},
    KnownKey{"BufEvtRdBlkLen", ValueKind::kLeadingDigit},
    KnownKey{"BufEvtShrinkSize", ValueKind::kLeadingDigit},
    KnownKey{"BufferEvents", ValueKind::kText},
    KnownKey{"BufferFlushRate", ValueKind::kLeadingDigit},
    KnownKey{"ConnectionMode", ValueKind::kText},
    KnownKey{"EventMaxSize", ValueKind::kPositive},
    KnownKey{"FilterMode", ValueKind::kText},
    KnownKey{"LogSources", ValueKind::kPaths},
    KnownKey{"PollInterval", ValueKind::kPositive},
    KnownKey{"RetryInterval", ValueKind::kNumber},
    KnownKey{"ServerLocation", ValueKind::kHosts},
    KnownKey{"ServerPort", ValueKind::kPorts},
    KnownKey{"TestMode", ValueKind::kText},
    KnownKey{"UnmatchLog", ValueKind::kText},
    KnownKey{"WellBehavedDaemon", ValueKind::kText},
};

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Insertions, deletions and replacements that lead from one to the other; case does not count.
std::size_t distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (lower(from[i]) == lower(to[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

const KnownKey* known_key(std::string_view name) {
  const auto* found = std::ranges::find(kKeys, name, &KnownKey::name);
  return found == kKeys.end() ? nullptr : &*found;
}

const KnownKey* nearest_key(std::string_view name) {
  constexpr std::size_t kNameBytesMax = 64;
  if (name.size() > kNameBytesMax) return nullptr;
  const auto distance_to = [name](const KnownKey& key) { return distance(name, key.name); };
  const auto* nearest = std::ranges::min_element(kKeys, {}, distance_to);
  return distance_to(*nearest) <= nearest->name.size() / 3 ? nearest : nullptr;
}

}  // namespace zem::fmt
