#include "adapters/logfile/common/event_maker.h"

#include <charconv>
#include <span>
#include <utility>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/logfile/common/logfile_utils.h"

namespace zem::event {
namespace {

/// Equal for equal arguments, and only for those: a kind is no digit.
std::string key_of(std::uint32_t layout, const std::vector<format::SlotSource>& sources) {
  std::string key = std::to_string(layout);
  for (const format::SlotSource& source : sources) {
    key += static_cast<char>(source.kind);
    key += std::to_string(source.variable);
  }
  return key;
}

}  // namespace

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
  for (std::size_t i = 1; i < count; ++i) {
    values_[i] = format::value_of(spec, recipe.sources[i - 1], host, captures);
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
  if (at >= numbers_.size()) numbers_.resize(at + 1, kUnknown);
  if (numbers_[at] == kUnknown) numbers_[at] = make_recipe(spec);
  return recipes_[numbers_[at]];
}

/// The number of the recipe, which is there already when another FORMAT has the same.
std::uint32_t EventMaker::make_recipe(const FormatSpec& spec) {
  std::vector<std::string> names = {"_event_id"};
  std::vector<format::SlotSource> sources;
  for (const MsgMapEntry* slot : spec.slots()) {
    const auto source = format::source_of(spec, *slot);
    if (!source) continue;
    names.emplace_back(slot->name());
    sources.push_back(*source);
  }
  if (values_.size() < names.size()) values_.resize(names.size());
  const kernel::EventLayout* const layout = layout_of(std::move(names));
  const auto next = static_cast<std::uint32_t>(recipes_.size());
  const auto [known, is_new] = known_recipes_.try_emplace(key_of(layout->id(), sources), next);
  if (is_new) recipes_.push_back({layout, std::move(sources)});
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
