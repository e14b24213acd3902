// Any message against any set of formats: the set's answer is that of the plain matcher, and the
// same when it is asked again. The input is format lines, an empty line, and the message.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tests/support/plain_matcher.h"
#include "tests/support/plain_set.h"
#include "util/expect.h"
#include "util/text.h"

namespace {

using Values = std::vector<std::string>;

/// The plain matcher is slow and goes deep.
constexpr std::size_t kFormatBytesMax = 200;
constexpr std::size_t kMessageBytesMax = 2000;

struct Match {
  int index = -1;
  Values values;

  bool operator==(const Match&) const = default;
};

std::vector<std::string> split_formats(std::string_view lines) {
  std::vector<std::string> formats;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    formats.emplace_back(line.substr(0, std::min(line.find('\0'), kFormatBytesMax)));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
  return formats;
}

std::string captured(const FormatSpec& spec, int k) {
  VarMapEntry variable(nullptr, "");
  variable.addRule(zem::util::format_text("$%d", k).c_str(), &spec);
  return std::string(spec.bvalue(&variable).view());
}

Match ask(LogDriver& set, const std::string& message) {
  Match match;
  const FormatSpec* spec = set.bind(message.c_str(), match.index);
  if (spec == nullptr) return match;
  const int kept = std::min(spec->numvars(), FormatSpec::kValuesMax);
  for (int k = 1; k <= kept; ++k) match.values.push_back(captured(*spec, k));
  return match;
}

Match ask_plainly(const std::vector<std::string>& formats, const std::string& message) {
  for (std::size_t i = formats.size(); i-- > 0;) {
    std::optional<Values> values = zem::test::plain_match(formats[i], message);
    if (!values) continue;
    values->resize(std::min(values->size(), std::size_t{FormatSpec::kValuesMax}));
    return {static_cast<int>(i), *std::move(values)};
  }
  return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t gap = input.find("\n\n");
  if (gap == input.npos) return 0;
  const std::vector<std::string> formats = split_formats(input.substr(0, gap));
  const std::string_view rest = input.substr(gap + 2);
  const std::string message(rest.substr(0, std::min(rest.find('\0'), kMessageBytesMax)));

  LogDriver set;
  for (const std::string& format : formats) {
    auto* spec = zem::format::make_counted<FormatSpec>("f");
    spec->setFmtStr(format.c_str());
    set.addFormatSpec(spec);
  }
  set.orderFmts();
  const Match match = ask(set, message);
  zem::util::expect(match == ask(set, message), "asked twice, a set answers the same");
  zem::util::expect(zem::test::compiled_bind(set, rest.substr(0, kMessageBytesMax)) ==
                        zem::test::plain_bind(set, message.c_str()),
                    "a set answers as its formats one after the other");
  zem::util::expect(match == ask_plainly(formats, message), "a set answers as the plain matcher");
  return 0;
}
