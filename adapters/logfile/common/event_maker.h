/// From a match to an event in the kernel's queue. The daemon and the format tool share it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/libzemad/event_view.h"
#include "adapters/logfile/common/event_slots.h"

namespace zem::event {

/// Queues the event of the last match of `spec` as records: the slots of
/// `format::visit_event_slots`, in their order. 0, or -1 when the frame has no room; a slot that
/// could not be made is left out.
int queue_event(const FormatSpec& spec, int index, const format::LocalHost& host);

/// The same event as a view. Which slots the events of a FORMAT have and where their values come
/// from is worked out beforehand, or with its first event: the FORMATs of the set, one for each
/// maker, must stay as they are while it lives. FORMATs with the same slots share what they can:
/// among thousands that are all in use, what is not shared is in no cache.
class EventMaker {
 public:
  /// Works out the events of FORMAT `index` (0 or more) of its set, so that its first event finds
  /// that done.
  void prepare(const FormatSpec& spec, int index) { (void)recipe_of(spec, index); }
  /// The event of the last match of `spec`, which is FORMAT `index` of its set. `captures`, when
  /// given, holds the values of that match, which are asked of the FORMAT otherwise: that is one
  /// place more to look at. Good until the next match or the next call. Allocates only for a FORMAT
  /// that is new.
  [[nodiscard]] kernel::EventView view(const FormatSpec& spec, int index,
                                       const format::LocalHost& host,
                                       const format::Captures* captures = nullptr);
  /// Queues it as a view; as records while anybody reads what making those has to tell. 0 or -1 as
  /// above. The next match must not come before kernel::settle_event.
  int queue(const FormatSpec& spec, int index, const format::LocalHost& host,
            const format::Captures* captures = nullptr);

 private:
  /// What the events of some FORMATs are made of.
  struct Recipe {
    const kernel::EventLayout* layout;
    std::vector<format::SlotSource> sources;  ///< one for each name behind "_event_id"
  };
  static constexpr std::uint32_t kUnknown = UINT32_MAX;

  const Recipe& recipe_of(const FormatSpec& spec, int index);
  std::uint32_t make_recipe(const FormatSpec& spec);
  const kernel::EventLayout* layout_of(std::vector<std::string> names);

  std::vector<std::uint32_t> numbers_;  ///< by index: of the recipe, or kUnknown
  std::vector<Recipe> recipes_;
  std::unordered_map<std::string, std::uint32_t> known_recipes_;                   ///< by key_of
  std::unordered_map<std::string, std::unique_ptr<kernel::EventLayout>> layouts_;  ///< by names
  std::vector<std::string_view> values_;
  std::array<char, 16> id_{};
};

}  // namespace zem::event
