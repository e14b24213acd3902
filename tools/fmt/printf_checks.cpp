// The formatter of class files knows one conversion, %s, with flags, a width and a precision. It
// goes from one % to the next and takes whatever letter it finds there.
#include <string>
#include <string_view>
#include <vector>

#include "tools/fmt/class_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

/// From the % to the conversion letter; without a letter where the format ends before.
std::vector<std::string_view> conversions_of(std::string_view format) {
  std::vector<std::string_view> conversions;
  for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at)) {
    std::size_t end = format.find_first_not_of(" #+-0", at + 1);
    end = std::min(format.find_first_not_of("0123456789", end), format.size());
    if (end < format.size() && format[end] == '.') {
      end = std::min(format.find_first_not_of("0123456789", end + 1), format.size());
    }
    conversions.push_back(format.substr(at, end + 1 - at));
    at = std::min(end + 1, format.size());
  }
  return conversions;
}

void check_line(const MapLine& line, Findings& findings) {
  const std::vector<std::string_view> conversions = conversions_of(*line.format);
  const std::size_t arguments = line.operands.size();
  const std::string counts =
      counted(conversions.size(), "conversion") + " for " + counted(arguments, "argument");
  if (conversions.size() < arguments) {
    findings.add(Code::kPrintfTooFew, line.format_where,
                 "this format has " + counts + "; each event logs it", "write a %s for each");
  } else if (conversions.size() > arguments) {
    findings.add(Code::kPrintfTooMany, line.format_where,
                 "this format has " + counts + "; the rest of it stands in the event as it is",
                 "write an argument for each %s");
  }
  for (std::size_t i = 0; i < std::min(conversions.size(), arguments); ++i) {
    if (conversions[i].ends_with('s')) continue;
    findings.add(Code::kPrintfConversion, line.format_where,
                 quoted(conversions[i]) + " is taken for %s; each event logs it",
                 "%s is the only conversion, and there is no way to write a percent sign before "
                 "the last one");
  }
}

void check_lines(const std::vector<MapLine>& lines, Findings& findings) {
  for (const MapLine& line : lines) {
    if (line.format) check_line(line, findings);
  }
}

}  // namespace

void check_printf_formats(ClassContext& context) {
  check_lines(context.file.defaults, context.findings);
  for (const ClassOutline& outline : context.file.classes) {
    if (outline.is_whole) check_lines(outline.maps, context.findings);
  }
}

}  // namespace zem::fmt
