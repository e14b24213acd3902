/// One MAP line as far as it can be worked out when the class file is read: constants put in,
/// formats taken apart.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/libzemad/class_plans.h"
#include "adapters/libzemad/configuration.h"

namespace zem::kernel {

/// A text, and behind it what `part` says of item `item`.
struct DraftPiece {
  std::string text;
  Part part = Part::kNothing;
  std::size_t item = 0;
  Conversion conversion;
};

/// The value of the slot as pieces, of which only the last may be a text alone. Nothing when the
/// plain evaluation of the line could fail or report something, or when it is not known what it
/// gives. `items` is how many SELECT items the class has.
[[nodiscard]] std::optional<std::vector<DraftPiece>> draft_slot(const Map& line,
                                                                const SL_List* constants,
                                                                std::size_t items);

}  // namespace zem::kernel
