/// Event filters and the event's terminator: which events are held back before they are sent or
/// cached, by class and attribute values.
#pragma once

#include "util/slist.h"

extern SL_List* zem_event_filters;        ///< from Filter: lines
extern SL_List* zem_event_cache_filters;  ///< from FilterCache: lines

/// Parses the text after "Filter:" and appends the filter to the cache filters (`cache` 1) or the
/// send filters; 0, or -1 for a syntax error. Cuts `spec` to pieces.
int zem_add_filter(char* spec, int cache);
/// 1 when the event is to be held back, 0 when it passes.
int zem_filter_event(const char* text, int cache);
/// 0 when every pair of the filter is found in the event, 1 otherwise.
int zem_filter_walk(const SL_List* filter, const SL_List* event);
/// A terminated copy of the event text (util/heap.h, released by the caller), or null when none is
/// needed.
char* zem_normalize_msg(const char* text, int len);
/// Empties both lists.
void zem_filters_clear();
