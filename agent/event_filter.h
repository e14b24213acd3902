/// Event filters and the event's terminator: which events are held back before they are sent or
/// cached, by class and attribute values. Memory exhaustion ends the process.
#pragma once

#include <string>
#include <string_view>

#include "util/slist.h"

/// One condition of a filter, which is a list of them: the attribute must have exactly this value.
/// Both texts are owned (util/heap.h).
struct zem_filter_slot {
  char* name;
  char* value;
};

/// One pair of a parsed event; both texts lie in the copy that was parsed, and are good until the
/// next event is.
struct zem_event_slot {
  const char* name;
  const char* value;
};

extern SL_List* zem_event_filters;        ///< from Filter: lines; of lists of zem_filter_slot
extern SL_List* zem_event_cache_filters;  ///< from FilterCache: lines

/// Parses the text after "Filter:" and appends the filter to the cache filters (`cache` 1) or the
/// send filters; 0, or -1 for a syntax error. Cuts `spec` to pieces.
int zem_add_filter(char* spec, int cache);
/// 1 when the event is to be held back, 0 when it passes.
int zem_filter_event(const char* text, int cache);
/// 0 when every pair of the filter is found in the event (a list of zem_event_slot), 1 otherwise.
int zem_filter_walk(const SL_List* filter, const SL_List* event);
/// The event text's tokenizer: the state after character `c`. States: 0 start of token, 1 inside an
/// unquoted token, 2 inside a quoted part, 3 just after a closing quote, 4 delimiter found.
int next(int state, char c);
/// A terminated copy of the event text (util/heap.h, released by the caller), or null when none is
/// needed. `len` is the length of `text`.
char* zem_normalize_msg(const char* text, int len);
/// Empties both lists.
void zem_filters_clear();

void zem_filter_slot_delete(zem_filter_slot* slot);
void zem_filter_delete(SL_List* filter);
void zem_event_delete(zem_event_slot* slot);

namespace zem::agent {

/// What ends an event in the cache file, and separates it from the next one.
inline constexpr char kEventEnd = '\x01';
/// What a terminator adds to an event text at most.
inline constexpr std::size_t kTerminatorBytes = 5;

/// True when the text counts as terminated (see zem_normalize_msg); an empty one needs no
/// terminator either.
[[nodiscard]] bool is_terminated(std::string_view event);
/// A terminated event text: what is kept of the event's own, and what comes behind it, if anything.
struct Terminated {
  std::string_view text;
  std::string_view terminator;
};
[[nodiscard]] Terminated terminated(std::string_view event);
/// False when `is_filtered` gives the same answer for all events.
[[nodiscard]] bool has_send_filters();
/// zem_filter_event for the send filters.
[[nodiscard]] bool is_filtered(std::string_view event);

}  // namespace zem::agent
