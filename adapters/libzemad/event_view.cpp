#include "adapters/libzemad/event_view.h"

#include <algorithm>
#include <utility>

#include "adapters/libzemad/class_index.h"

namespace zem::kernel {
namespace {

std::uint32_t next_id() {
  static std::uint32_t last = 0;
  return ++last;
}

int place_of_event_id(const std::vector<std::string>& names) {
  const auto found = std::ranges::find(names, ClassIndex::kEventId);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

}  // namespace

EventLayout::EventLayout(std::vector<std::string> names)
    : id_(next_id()), names_(std::move(names)), event_id_(place_of_event_id(names_)) {}

}  // namespace zem::kernel
