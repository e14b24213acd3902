#include "adapters/logfile/common/matcher/format_key.h"

#include <algorithm>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/StringComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"

namespace zem::format {

Element VariableTable::element_of(const KeyVariable& variable) {
  const auto next = static_cast<Element>(kFirstVariable + variables_.size());
  const auto [found, added] = elements_.try_emplace(variable, next);
  if (added) variables_.push_back(variable);
  return found->second;
}

namespace {

/// Collects the elements of one FORMAT.
class KeyWriter {
 public:
  KeyWriter(VariableTable& table, std::vector<Element>& elements)
      : table_(table), elements_(elements), start_(elements.size()) {}

  /// False when no message can match so far.
  bool put(const FormatComponent& component, const ConstComponent& lookahead) {
    switch (component.kind()) {
      case ComponentKind::kConstant:
        return put_constant(static_cast<const ConstComponent&>(component).text());
      case ComponentKind::kBlank:
        return put_blank();
      default:
        put_variable(static_cast<const StringComponent&>(component), lookahead);
        return true;
    }
  }

 private:
  bool put_constant(std::string_view text) {
    if (std::ranges::any_of(text, is_blank)) return false;
    for (const char c : text) elements_.push_back(static_cast<unsigned char>(c));
    if (text.empty()) elements_.push_back(table_.element_of({ComponentKind::kConstant, 0, {}}));
    return true;
  }

  bool put_blank() {
    if (elements_.size() == start_ || elements_.back() == ' ') return false;
    elements_.push_back(' ');
    return true;
  }

  void put_variable(const StringComponent& word, const ConstComponent& lookahead) {
    elements_.push_back(table_.element_of({word.kind(), word.width(), lookahead.text()}));
  }

  VariableTable& table_;
  std::vector<Element>& elements_;
  std::size_t start_;
};

}  // namespace

bool append_key(const FormatSpec& spec, VariableTable& table, std::vector<Element>& elements) {
  const std::size_t start = elements.size();
  KeyWriter key(table, elements);
  auto lookahead = spec.lookaheads().begin();
  for (const FormatComponent* component : spec.components()) {
    if (lookahead == spec.lookaheads().end()) break;  // the format was never completed
    if (!key.put(*component, **lookahead)) {
      elements.resize(start);
      return false;
    }
    ++lookahead;
  }
  return true;
}

}  // namespace zem::format
