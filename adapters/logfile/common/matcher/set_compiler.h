/// Turns the FORMATs of a set into one program. Cost: about that of sorting their texts.
#pragma once

#include <span>

#include "adapters/logfile/common/matcher/program.h"

class FormatSpec;

namespace zem::format {

/// The program of `specs`, the first of which is the best. It keeps nothing of them.
[[nodiscard]] Program compile_set(std::span<FormatSpec* const> specs);

}  // namespace zem::format
