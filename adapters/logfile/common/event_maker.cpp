#include "adapters/logfile/common/event_maker.h"

#include <charconv>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/logfile/common/logfile_utils.h"

namespace zem::event {

int queue_event(const FormatSpec& spec, int index, const format::LocalHost& host) {
  if (SysLogGetEventBuffer() != 0) return -1;
  format::visit_event_slots(spec, index, host, [](const char* name, const char* value) {
    (void)SysLogMakeAttribute(name, nullptr, value);
  });
  return 0;
}

kernel::EventView EventMaker::view(const FormatSpec& spec, int index, const format::LocalHost& host,
                                   const format::Captures* captures) {
  const Recipe& recipe = recipe_of(spec, index);
  const auto id_end = std::to_chars(id_.data(), id_.data() + id_.size(), index).ptr;
  const std::size_t count = recipe.layout->names().size();
  values_[0] = {id_.data(), id_end};
  const auto sources = std::span(sources_).subspan(recipe.first_source, count - 1);
  for (std::size_t i = 0; i < sources.size(); ++i) {
    values_[i + 1] = format::value_of(spec, sources[i], host, captures);
  }
  return {recipe.layout, std::span(values_).first(count)};
}

int EventMaker::queue(const FormatSpec& spec, int index, const format::LocalHost& host,
                      const format::Captures* captures) {
  const bool as_records = log::is_traced() || ZEMAD_CheckBuffer() != 0;
  if (as_records) return queue_event(spec, index, host);
  return kernel::queue_event(view(spec, index, host, captures));
}

const EventMaker::Recipe& EventMaker::recipe_of(const FormatSpec& spec, int index) {
  const auto at = static_cast<std::size_t>(index);
  if (at >= recipes_.size()) recipes_.resize(at + 1);
  if (recipes_[at].spec != &spec) recipes_[at] = make_recipe(spec);
  return recipes_[at];
}

EventMaker::Recipe EventMaker::make_recipe(const FormatSpec& spec) {
  std::vector<std::string> names = {"_event_id"};
  std::vector<format::SlotSource> sources;
  for (const MsgMapEntry* slot : spec.slots()) {
    const auto source = format::source_of(spec, *slot);
    if (!source) continue;
    names.emplace_back(slot->name());
    sources.push_back(*source);
  }
  if (values_.size() < names.size()) values_.resize(names.size());
  return {&spec, layout_of(std::move(names)), place_of(sources)};
}

std::size_t EventMaker::place_of(const std::vector<format::SlotSource>& sources) {
  static_assert(std::has_unique_object_representations_v<format::SlotSource>);
  std::string key(sources.size() * sizeof(format::SlotSource), '\0');
  std::memcpy(key.data(), sources.data(), key.size());
  const auto [known, is_new] = known_sources_.try_emplace(std::move(key), sources_.size());
  if (is_new) sources_.insert(sources_.end(), sources.begin(), sources.end());
  return known->second;
}

const kernel::EventLayout* EventMaker::layout_of(std::vector<std::string> names) {
  std::string key;
  for (const std::string& name : names) key.append(name).push_back('\0');
  std::unique_ptr<kernel::EventLayout>& layout = layouts_[key];
  if (!layout) layout = std::make_unique<kernel::EventLayout>(std::move(names));
  return layout.get();
}

}  // namespace zem::event
