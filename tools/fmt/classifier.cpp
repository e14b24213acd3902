#include "tools/fmt/classifier.h"

#include <algorithm>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/short_road.h"
#include "util/slist.h"

namespace zem::fmt {
namespace {

constexpr char kNameEnd = ';';

bool is_plain(const Config* config) {
  return config->ClassName == nullptr ||
         std::string_view(config->ClassName).find(kNameEnd) == std::string_view::npos;
}

bool all_names_are_plain() {
  for (const Config* config : util::sl_items<Config>(ZEMAD_ConfigurationList)) {
    if (!is_plain(config)) return false;
  }
  return true;
}

std::optional<std::string_view> view_of(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string_view>(text);
}

}  // namespace

Classifier::Classifier() : are_names_plain_(all_names_are_plain()) {}

ClassifiedEvent Classifier::classify(const FormatSpec& spec, int index,
                                     const format::LocalHost& host,
                                     const format::Captures* captures) {
  records_.reset();
  if (!are_names_plain_) return by_records(spec, index, host);
  switch (frame::write_event(maker_.view(spec, index, host, captures), text_)) {
    case kernel::Outcome::kText:
      return {text_.view().substr(0, text_.view().find(kNameEnd)), text_.view()};
    case kernel::Outcome::kDropped:
      return {};
    case kernel::Outcome::kUnknown:
      break;
  }
  return by_records(spec, index, host);
}

ClassifiedEvent Classifier::by_records(const FormatSpec& spec, int index,
                                       const format::LocalHost& host) {
  records_.emplace(spec, index, host);
  return {view_of(records_->class_name()), view_of(records_->text())};
}

}  // namespace zem::fmt
