/// The keys of the configuration file.
#pragma once

#include <span>
#include <string_view>

namespace zem::fmt {

enum class ValueKind {
  kText,
  kNumber,        ///< no number counts as 0, or as the default
  kPositive,      ///< the same, and 0 is none either
  kLeadingDigit,  ///< what does not begin with a digit counts as absent
  kHosts,         ///< separated by commas
  kPorts,
  kPaths,
};

struct KnownKey {
  std::string_view name;
  ValueKind kind;
};

/// Null for a key that nobody reads.
[[nodiscard]] const KnownKey* known_key(std::string_view name);
/// The known key that `name` was probably meant to be; null when it resembles none.
[[nodiscard]] const KnownKey* nearest_key(std::string_view name);

}  // namespace zem::fmt
