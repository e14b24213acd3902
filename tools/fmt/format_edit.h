/// The smallest change of a format line that would make it match.
#pragma once

#include <optional>
#include <string>

#include "tools/fmt/format_trace.h"

namespace zem::fmt {

struct FormatEdit {
  std::string line;  ///< the changed line
  std::size_t size;  ///< what is deleted and typed; more when it undoes what had matched
};

/// Nothing when no change was found. The line is one that the engine reads and that matches
/// `message`: every candidate is tried.
[[nodiscard]] std::optional<FormatEdit> smallest_edit(const FormatSpec& spec,
                                                      const FormatTrace& trace,
                                                      const char* message);

}  // namespace zem::fmt
