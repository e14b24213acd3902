// Foreign bytes as all that the format tool reads: a format file, a class file, a configuration and
// a test file, separated by lines of "%%"; those at the end may be missing. The tool's tolerant
// readers go on behind faults where the engine stops, so nothing has looked at these bytes before
// them.
//
// Whatever is wrong has a reason and a place: the tool never refuses a file without knowing why. A
// test file that is understood reads back as itself, and its first lines are explained as messages.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/logfile/common/FormatSpec.h"
#include "tools/fmt/check_classes.h"
#include "tools/fmt/check_format.h"
#include "tools/fmt/check_settings.h"
#include "tools/fmt/command.h"
#include "tools/fmt/console.h"
#include "tools/fmt/explain_format.h"
#include "tools/fmt/test_file.h"
#include "util/expect.h"
#include "util/unique_fd.h"

namespace {

using zem::fmt::Code;
using zem::fmt::Finding;
using zem::fmt::Findings;
using zem::util::expect;

/// A file that is there as long as the object.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view text) : fd_(::memfd_create("fuzz", MFD_CLOEXEC)) {
    expect(::write(fd_.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()),
           "a file in memory takes the text");
  }
  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(fd_.get()); }

 private:
  zem::util::UniqueFd fd_;
};

/// The text up to the next line of "%%", which is taken off `rest` with it.
std::string_view take_part(std::string_view& rest) {
  constexpr std::string_view kSeparator = "\n%%\n";
  const std::size_t end = rest.find(kSeparator);
  const std::string_view part = rest.substr(0, end == rest.npos ? end : end + 1);
  rest.remove_prefix(std::min(rest.size(), part.size() + kSeparator.size() - 1));
  return part;
}

zem::fmt::Output& nowhere() {
  static zem::fmt::Output output = zem::fmt::Output::to_file("/dev/null");
  return output;
}

void look_through(const Findings& findings) {
  expect(std::ranges::none_of(findings.all(),
                              [](const Finding& finding) {
                                return finding.code == Code::kRefused ||
                                       finding.code == Code::kClassRefused;
                              }),
         "what is refused has a reason");
  findings.print(nowhere(), zem::fmt::Painter(false));
}

std::optional<zem::fmt::TestFile> understood(const std::string& text) try {
  return zem::fmt::parse_test_file(text, "fuzz");
} catch (const zem::fmt::Failure&) {
  return std::nullopt;
}

void read_tests(const std::string& text) {
  const auto file = understood(text);
  if (!file) return;
  const std::string written = zem::fmt::rendered(*file);
  const auto again = understood(written);
  expect(again && zem::fmt::rendered(*again) == written, "a test file reads back as itself");
}

void explain(const zem::fmt::CheckedFormats& formats, const zem::fmt::SourceText& source,
             const std::string& message) {
  zem::fmt::Console console{nowhere(), nowhere(), zem::fmt::Painter(false),
                            zem::fmt::Painter(false)};
  const zem::fmt::FormatExplainer explainer(formats.model(), source, console);
  for (const zem::fmt::FormatEntry& entry : formats.model().entries()) {
    if (zem::fmt::trace_format(*entry.spec, message.c_str()).is_match) {
      explainer.show_match(entry.index, message.c_str());
      return;
    }
  }
  explainer.show_nearest(message.c_str(), 1);
}

void explain_lines(const zem::fmt::CheckedFormats& formats, const zem::fmt::SourceText& source,
                   std::string_view lines) {
  constexpr int kLinesMax = 4;  // each may try hundreds of edits
  for (int i = 0; i < kLinesMax && !lines.empty(); ++i) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    explain(formats, source, std::string(line.substr(0, 510)) + "\n");
    lines.remove_prefix(std::min(lines.size(), line.size() + 1));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const MemoryFile format_file(take_part(rest));
  const MemoryFile class_file(take_part(rest));
  const MemoryFile setting_file(take_part(rest));
  const std::string tests(rest);

  zem::fmt::CheckedFormats formats(format_file.path());
  zem::fmt::CheckedClasses classes(class_file.path(), formats);
  zem::fmt::CheckedSettings settings(setting_file.path());
  look_through(formats.findings());
  look_through(classes.findings());
  settings.findings().print(nowhere(), zem::fmt::Painter(false));
  read_tests(tests);
  explain_lines(formats, zem::fmt::SourceText::read(format_file.path()), tests);
  return 0;
}
