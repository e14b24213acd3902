#include "agent/event_filter.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "agent/agent_util.h"
#include "util/heap.h"

// An event is read into pairs, the class first, quotes kept:
//
//   Su_Failed;user=bob;msg='a;b';END\n\x01   ->   (Class, Su_Failed) (user, bob) (msg, 'a;b')
//
// and a filter matches when each of its own pairs is the first of that name there. Filter lines are
// read by another, simpler rule (strtok), so that the two differ on purpose: see zem_add_filter.

SL_List* zem_event_filters = nullptr;
SL_List* zem_event_cache_filters = nullptr;

namespace {

using FilterPtr = zem::util::SlListOf<zem_filter_slot_delete>;
using FilterSlotPtr = std::unique_ptr<zem_filter_slot, zem::util::FreeWith<zem_filter_slot_delete>>;

constexpr std::string_view kTerminator = "END\n\x01";
static_assert(kTerminator.size() == zem::agent::kTerminatorBytes);
constexpr std::string_view kEndWord = "END";
constexpr int kDelimiterFound = 4;

SL_List* create_list() {
  SL_List* const list = SL_Create();
  if (list == nullptr) fatal_memory_error();
  return list;
}

char* copy_of(const char* text) {
  char* const copy = zem::util::duplicate(text);
  if (copy == nullptr) fatal_memory_error();
  return copy;
}

template <class Slot>
Slot* new_slot() {
  return static_cast<Slot*>(zem::util::allocate(sizeof(Slot)));
}

void add_condition(SL_List* filter, const char* name, const char* value) {
  FilterSlotPtr slot(new_slot<zem_filter_slot>());
  if (slot == nullptr) fatal_memory_error();
  slot->name = copy_of(name);
  slot->value = copy_of(value);
  if (SL_InsLast(filter, slot.get()) == 0) fatal_memory_error();
  static_cast<void>(slot.release());  // the filter's from here on
}

/// Reads the pairs of a filter line; false when a name has no value.
bool parse_filter(char* spec, SL_List* filter) {
  char* rest = nullptr;
  // Deliberate: strtok skips delimiters in a row and trims nothing, so "a=;b=c" is the one pair
  // (a, "b=c") (EventFilter.ReadsFilterLines).
  for (char* name = ::strtok_r(spec, "=", &rest); name != nullptr;
       name = ::strtok_r(nullptr, "=", &rest)) {
    const char* const value = ::strtok_r(nullptr, ";", &rest);
    if (value == nullptr) return false;
    add_condition(filter, name, value);
  }
  return true;
}

/// The parsed form of one event text at a time. Its pairs point into its own copy of the text; both
/// are used again for the next event, so that only longer ones take memory.
class EventParser {
 public:
  EventParser() = default;
  EventParser(const EventParser&) = delete;
  EventParser& operator=(const EventParser&) = delete;
  ~EventParser() { release(); }

  /// The pairs of `event`, good until the next call.
  const SL_List* parse(std::string_view event) {
    text_ = event;
    if (text_.ends_with(kTerminator)) text_.resize(text_.size() - kTerminator.size());
    reset_slots();
    at_ = std::min(text_.find(';'), text_.size());
    add("Class", cut(0));
    parse_slots();
    return slots_;
  }

  void release() {
    if (slots_ == nullptr) return;
    slots_->count = std::exchange(made_, 0);
    SL_DelAll(std::exchange(slots_, nullptr), zem::util::sl_free<zem_event_delete>);
  }

 private:
  [[noreturn]] static void out_of_memory() {
    std::fputs("memory allocation failure\n", stderr);
    std::exit(1);
  }

  void reset_slots() {
    if (slots_ == nullptr) slots_ = SL_Create();
    if (slots_ == nullptr) out_of_memory();
    slots_->count = 0;
  }

  void parse_slots() {
    for (;;) {
      const char* const name = next_token();
      const char* const value = name == nullptr ? nullptr : next_token();
      if (value == nullptr) return;
      add(name, value);
    }
  }

  /// The token that begins at `at_`, ended by a NUL in the place of its delimiter; null at the end.
  const char* next_token() {
    if (at_ >= text_.size()) return nullptr;
    const std::size_t begin = at_;
    for (int state = 0; at_ < text_.size(); ++at_) {
      state = next(state, text_[at_]);
      if (state == kDelimiterFound) return cut(begin);
    }
    return text_.data() + begin;
  }

  /// Ends the token at `at_` and steps behind its delimiter.
  const char* cut(std::size_t begin) {
    if (at_ < text_.size()) text_[at_++] = '\0';
    return text_.data() + begin;
  }

  void add(const char* name, const char* value) {
    if (slots_->count == made_) make_slot();
    *static_cast<zem_event_slot*>(slots_->items[slots_->count++]) = {name, value};
  }

  /// Appends a slot that is not in use yet.
  void make_slot() {
    auto* const slot = new_slot<zem_event_slot>();
    if (slot == nullptr || SL_InsLast(slots_, slot) == 0) out_of_memory();
    slots_->count = made_++;
  }

  std::string text_;
  std::size_t at_ = 0;        ///< where the next token begins
  SL_List* slots_ = nullptr;  ///< the pairs of the event; behind `count` those of longer ones
  int made_ = 0;              ///< slots in the list, in use or not
};

EventParser& event_parser() {
  static EventParser parser;
  return parser;
}

bool any_filter_matches(const SL_List* filters, std::string_view text) {
  const SL_List* const event = event_parser().parse(text);
  for (const auto* filter : zem::util::sl_items<const SL_List>(filters)) {
    if (zem_filter_walk(filter, event) == 0) return true;
  }
  return false;
}

/// True when an event is to be held back by `filters`.
bool is_held_back(std::string_view text, const SL_List* filters) {
  const bool selects = zem::agent::is_filter_mode_in();
  if (SL_NbrElm(filters) == 0) return selects;
  if (text.find(';') == std::string_view::npos) return false;
  return any_filter_matches(filters, text) != selects;
}

/// The value of the first pair of this name; null when there is none.
const char* value_in(const SL_List* event, const char* name) {
  for (const auto* slot : zem::util::sl_items<const zem_event_slot>(event)) {
    if (std::strcmp(slot->name, name) == 0) return slot->value;
  }
  return nullptr;
}

}  // namespace

int zem_add_filter(char* spec, int cache) {
  FilterPtr filter(create_list());
  if (!parse_filter(spec, filter.get())) return -1;
  if (SL_NbrElm(filter.get()) == 0) return 0;
  SL_List*& filters = cache == 1 ? zem_event_cache_filters : zem_event_filters;
  if (filters == nullptr) filters = create_list();
  if (SL_InsLast(filters, filter.get()) == 0) fatal_memory_error();
  static_cast<void>(filter.release());  // the list's from here on
  return 0;
}

int zem_filter_event(const char* text, int cache) {
  return is_held_back(text, cache == 1 ? zem_event_cache_filters : zem_event_filters) ? 1 : 0;
}

int zem_filter_walk(const SL_List* filter, const SL_List* event) {
  for (const auto* condition : zem::util::sl_items<const zem_filter_slot>(filter)) {
    const char* const value = value_in(event, condition->name);
    if (value == nullptr || std::strcmp(value, condition->value) != 0) return 1;
  }
  return 0;
}

int next(int state, char c) {
  const bool is_quote = c == '\'';
  const bool is_delimiter = c == '=' || c == ';';
  switch (state) {
    case 0:
      return is_quote ? 2 : 1;  // a delimiter too: a token has at least one character
    case 1:
      return is_delimiter ? kDelimiterFound : 1;
    case 2:
      return is_quote ? 3 : 2;
    case 3:
      if (is_quote) return 2;  // a doubled quote stays inside
      return is_delimiter ? kDelimiterFound : 1;
    default:
      return kDelimiterFound;
  }
}

char* zem_normalize_msg(const char* text, int len) {
  if (len <= 0) return nullptr;
  const std::string_view event(text, static_cast<std::size_t>(len));
  if (zem::agent::is_terminated(event)) return nullptr;
  const auto [head, terminator] = zem::agent::terminated(event);
  return copy_of(std::string(head).append(terminator).c_str());
}

void zem_filters_clear() {
  for (SL_List** list : {&zem_event_filters, &zem_event_cache_filters}) {
    SL_DelAll(*list, zem::util::sl_free<zem_filter_delete>);
    *list = create_list();
  }
  event_parser().release();
}

void zem_filter_slot_delete(zem_filter_slot* slot) {
  if (slot == nullptr) return;
  zem::util::release(slot->name);
  zem::util::release(slot->value);
  zem::util::release(slot);
}

void zem_filter_delete(SL_List* filter) {
  SL_DelAll(filter, zem::util::sl_free<zem_filter_slot_delete>);
}

void zem_event_delete(zem_event_slot* slot) { zem::util::release(slot); }

namespace zem::agent {

bool is_terminated(std::string_view event) {
  if (event.size() < kTerminator.size()) return event.empty();
  // Deliberate: the comparison takes `len` - 5 bytes, so texts of 5 to 9 bytes are compared in
  // part, and one of 5 always passes (EventTerminator.ComparesLengthLessFiveBytes).
  const std::size_t rest = event.size() - kTerminator.size();
  return event.substr(rest).substr(0, rest) == kTerminator.substr(0, rest);
}

Terminated terminated(std::string_view event) {
  if (is_terminated(event)) return {event, {}};
  const std::size_t tail =
      event.size() < kTerminator.size() ? 0 : event.size() - kTerminator.size();
  return {event.substr(0, event.find(kEndWord, tail)), kTerminator};
}

bool has_send_filters() { return SL_NbrElm(zem_event_filters) != 0; }

bool is_filtered(std::string_view event) { return ::is_held_back(event, zem_event_filters); }

}  // namespace zem::agent
