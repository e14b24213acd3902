#include "tests/support/plain_set.h"

#include <algorithm>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "util/text.h"

namespace zem::test {

namespace {

/// $1, $2, ... for reading values.
class Variables {
 public:
  Variables() {
    FormatSpec many("many");
    for (int k = 1; k <= kCount; ++k) {
      if (k <= FormatSpec::kValuesMax) many.addFormat("%s");
      variables_.emplace_back(nullptr, "v");
      variables_.back().addRule(util::format_text("$%d", k).c_str(), &many);
    }
  }
  [[nodiscard]] const VarMapEntry* operator[](int k) const {
    return &variables_[static_cast<std::size_t>(k - 1)];
  }

 private:
  static constexpr int kCount = FormatSpec::kValuesMax;
  std::vector<VarMapEntry> variables_;
};

std::string described(int place, const FormatSpec& spec) {
  static const Variables variables;
  std::string text = std::to_string(place) + " " + spec.name();
  for (int k = 1; k <= std::min(spec.numvars(), FormatSpec::kValuesMax); ++k) {
    text.append("|").append(spec.bvalue(variables[k]).view());
  }
  return text;
}

}  // namespace

std::string plain_bind(const LogDriver& set, const char* message) {
  SysLogMsg msg(message);
  int place = 0;
  for (FormatSpec* spec : set.specs()) {
    if (spec->bind(msg) != 0) return described(place, *spec);
    ++place;
  }
  return "no match";
}

std::string compiled_bind(LogDriver& set, std::string_view message) {
  int index = 0;
  const FormatSpec* spec = set.bind(message, index);
  if (spec == nullptr) return index == -1 ? "no match" : "no match, but an index";
  return described(static_cast<int>(set.specs().size()) - 1 - index, *spec);
}

}  // namespace zem::test
