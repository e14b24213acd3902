/// The keyword table: what a rule may ask about the current event as a whole, by `$name`. The one
/// keyword of this system has the empty name and stands for the list of all attributes.
#pragma once

#include <span>

#include "adapters/libzemad/configuration.h"

namespace zem::kernel {

/// Makes the rows' names and keys anew, with no event bound; false when memory is short.
[[nodiscard]] bool make_keyword_table();

/// Points the rows at the values of an event: ZEMAD_max_keywords of them, borrowed, or none when no
/// event is current. Rows other than the first get the empty text where the event has no value, and
/// the first one gets the varbind text when it is asked for; both are stored in `values` and
/// released with them.
void bind_keywords(std::span<AttributeEntry*> values);

}  // namespace zem::kernel
