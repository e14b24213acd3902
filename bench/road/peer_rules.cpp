#include "bench/road/peer_rules.h"

#include <cstddef>
#include <map>
#include <string_view>

#include "util/expect.h"

namespace zem::bench {

namespace {

constexpr std::string_view kHead = "%t %s ";
constexpr std::string_view kProcess = "[%s]: ";

/// A format line `%t %s PROGRAM[%s]: TEXT`, taken apart.
struct Parts {
  std::string name;
  std::string program;
  std::string text;
};

std::vector<Parts> take_apart(const std::vector<std::string>& format_lines) {
  std::vector<Parts> all;
  for (std::size_t i = 1; i < format_lines.size(); ++i) {
    const std::string& line = format_lines[i];
    const std::size_t process = line.find(kProcess);
    util::expect(process != std::string::npos, "each FORMAT but the first has a process number");
    all.push_back({"Event_" + std::to_string(i), line.substr(kHead.size(), process - kHead.size()),
                   line.substr(process + kProcess.size())});
  }
  return all;
}

/// `text` with its k-th `variable` replaced by `before`, "value" and k, `behind`.
std::string name_values(std::string_view text, std::string_view variable, std::string_view before,
                        std::string_view behind) {
  std::string result;
  int count = 0;
  for (auto at = text.find(variable); at != text.npos; at = text.find(variable)) {
    result.append(text.substr(0, at)).append(before).append("value");
    result.append(std::to_string(++count)).append(behind);
    text.remove_prefix(at + variable.size());
  }
  return result.append(text);
}

}  // namespace

std::string lognorm_rulebase(const std::vector<std::string>& format_lines) {
  constexpr std::string_view kLognormHead = ":%date:date-rfc3164% %hostname:word% ";
  std::string text = "version=2\n";
  text.append("rule=Base").append(kLognormHead).append("%msg:rest%\n");
  for (const Parts& parts : take_apart(format_lines)) {
    text.append("rule=").append(parts.name).append(kLognormHead).append(parts.program);
    text.append(R"([%pid:char-to{"extradata":"]"}%]: )");
    text.append(name_values(parts.text, "%s", "%", ":word%")) += '\n';
  }
  return text;
}

std::string pattern_database(const std::vector<std::string>& format_lines) {
  const auto rule = [](const std::string& name, const std::string& pattern) {
    return "<rule provider='bench' id='" + name + "' class='" + name + "'><patterns><pattern>" +
           pattern + "</pattern></patterns></rule>\n";
  };
  std::map<std::string, std::string> by_program;
  for (const Parts& parts : take_apart(format_lines)) {
    // ESTRING takes the blank that ends it, too.
    by_program[parts.program] +=
        rule(parts.name, name_values(parts.text, "%s ", "@ESTRING:", ": @"));
  }
  by_program["@ANYSTRING:any@"] = rule("Base", "@ANYSTRING:msg@");
  std::string text = "<?xml version='1.0' encoding='UTF-8'?>\n<patterndb version='5'>\n";
  for (const auto& [program, rules] : by_program) {
    text.append("<ruleset name='").append(program).append("' id='").append(program);
    text.append("'><patterns><pattern>").append(program).append("</pattern></patterns><rules>\n");
    text.append(rules).append("</rules></ruleset>\n");
  }
  return text.append("</patterndb>\n");
}

}  // namespace zem::bench
