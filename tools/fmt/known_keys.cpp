#include "tools/fmt/known_keys.h"

#include <algorithm>
#include <array>

#include "tools/fmt/near_word.h"

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

}  // namespace

const KnownKey* known_key(std::string_view name) {
  const auto* found = std::ranges::find(kKeys, name, &KnownKey::name);
  return found == kKeys.end() ? nullptr : &*found;
}

const KnownKey* nearest_key(std::string_view name) {
  const auto place = nearest_word(name, kKeys, &KnownKey::name);
  return place == kKeys.end() ? nullptr : &*place;
}

}  // namespace zem::fmt
