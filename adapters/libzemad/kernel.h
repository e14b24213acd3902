/// The rule kernel: decides which class an event belongs to, computes its FETCH values and fills
/// its outgoing slots.
#pragma once

#include "util/slist.h"

// Per-event lists, null between events.
extern SL_List* ZEMAD_NameAttrList;   ///< of AttributeEntry, borrowed from the event
extern SL_List* ZEMAD_KeyAttrList;    ///< of AttributeEntry, borrowed from the event
extern SL_List* ZEMAD_ValueAttrList;  ///< of AttributeEntry, borrowed from the event
extern SL_List* ZEMAD_FetchList;      ///< of AttributeEntry, owned
extern SL_List* ZEMAD_MapEntryList;   ///< of MapEntry, owned: the outgoing slots in order

/// The class of the current event (owned by its record), or null when the event is dropped. The
/// lists stay until the clean-up, for the sender to read.
const char* ZEMAD_KernelSelect();
int ZEMAD_KernelSelectCleanup();
