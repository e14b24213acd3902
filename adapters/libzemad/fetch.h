/// The FETCH clause: computed values of the chosen class.
#pragma once

#include "adapters/libzemad/configuration.h"

/// Evaluates the items in order into ZEMAD_FetchList; 1, or 0 when one failed.
int ZEMAD_EvalFetch(const SL_List* fetches);
/// A new entry owned by the caller, or null.
AttributeEntry* ZEMAD_EvalFetchExpression(const Expression* expression);
