/// The MAP clauses: the outgoing slots of the chosen class.
#pragma once

#include "adapters/libzemad/configuration.h"

/// Adds the slots of `maps` to ZEMAD_MapEntryList, a later line for the same slot replacing an
/// earlier one; 1, or 0 when one failed (the list is gone then).
int ZEMAD_EvalMap(const SL_List* maps);
/// A new slot, or null.
MapEntry* ZEMAD_EvalMapFormat(const Map* map);
/// A new text (util/heap.h), or null. `format` may be null: the values are then joined bare.
/// `values` holds AttributeEntry records.
char* ZEMAD_EvalMapPrintf(const char* format, int count, const SL_List* values);
