/// How the classes of the kernel deal with the current event, item by item: the kernel's own
/// evaluation, watched. Only while a KernelEvent lives; the kernel's per-event lists are used up.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct Config;

namespace zem::fmt {

enum class ItemOutcome {
  kHolds,
  kNoSlot,  ///< the ATTR test found nothing
  kKeyFails,
  kValueFails,
};

/// The item that decided about a class.
struct ItemFailure {
  std::size_t item;  ///< from 0
  ItemOutcome outcome;
  std::string slot;     ///< that was found
  std::string value;    ///< the key or value that was tested
  std::string operand;  ///< what it was compared with
};

struct ClassTrial {
  bool is_selected = false;
  std::optional<ItemFailure> failure;  ///< nothing when the class has no items
};

/// The trials in the order of the file, up to the class that was selected.
[[nodiscard]] std::vector<ClassTrial> try_classes();

/// Slots of the event that the items of the selected class found, in their order: name and value.
using Captures = std::vector<std::pair<std::string, std::string>>;
[[nodiscard]] Captures selected_slots();

/// The results of FETCH, up to one that failed.
struct FetchResults {
  std::vector<std::string> values;
  bool has_failed = false;
};
[[nodiscard]] FetchResults fetch_results(const Config& selected);

}  // namespace zem::fmt
