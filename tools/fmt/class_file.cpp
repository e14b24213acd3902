// The kernel speaks into its log, whose destinations are paths. A file in memory lends its path for
// the time of the reading.
#include "tools/fmt/class_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/parse.h"
#include "adapters/libzemad/parse_config.h"
#include "tools/fmt/command.h"
#include "tools/fmt/format_file.h"
#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::fmt {
namespace {

std::string text_in(int fd) {
  std::string text;
  std::array<char, 4096> block{};
  for (off_t at = 0;; at += static_cast<off_t>(block.size())) {
    const ssize_t count = ::pread(fd, block.data(), block.size(), at);
    if (count <= 0) return text;
    text.append(block.data(), static_cast<std::size_t>(count));
  }
}

/// The part of a log line behind its header, "... line 0042: text".
std::string message_of(std::string_view line) {
  const std::size_t place = line.find(" line ");
  const std::size_t colon = line.find(": ", place == std::string_view::npos ? 0 : place);
  return std::string(colon == std::string_view::npos ? line : line.substr(colon + 2));
}

/// What the parser reports while the object lives.
class ParserLog {
 public:
  ParserLog() : file_(::memfd_create("zemad_fmt", MFD_CLOEXEC)) {
    const std::string path = "/proc/self/fd/" + std::to_string(file_.get());
    for (char* destination : destinations()) destination[path.copy(destination, path.size())] = 0;
  }
  ParserLog(const ParserLog&) = delete;
  ParserLog& operator=(const ParserLog&) = delete;
  ~ParserLog() {
    for (char* destination : destinations()) *destination = '\0';
  }

  [[nodiscard]] std::vector<std::string> messages() const {
    const std::string text = text_in(file_.get());
    std::vector<std::string> messages;
    for (std::string_view rest = text; !rest.empty();) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      if (!line.empty()) messages.push_back(message_of(line));
      rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return messages;
  }

 private:
  static std::array<char*, 3> destinations() {
    auto& severities = ZEMAD_module_debugfile[log::kParser];
    return {severities[log::kMinor], severities[log::kMajor], severities[log::kFatal]};
  }

  util::UniqueFd file_;
};

/// The file that zemad_parse reads.
std::FILE* source = nullptr;
int next_byte() { return std::getc(source); }

}  // namespace

ClassReading read_classes(const std::string& path) {
  require_readable(path);
  source = std::fopen(path.c_str(), "re");
  if (source == nullptr) {
    throw Failure(ExitStatus::kNoInput, util::last_error("open", path).text());
  }
  const ParserLog log;
  const bool is_accepted = zemad_parse(next_byte, path.c_str()) == 0 && std::ferror(source) == 0;
  (void)std::fclose(source);  // NOLINT(cppcoreguidelines-owning-memory)
  return {is_accepted, log.messages()};
}

void load_classes(const std::string& path) {
  const ClassReading reading = read_classes(path);
  if (reading.is_accepted) {
    kernel::compile_classes();
    return;
  }
  std::string text =
      path + ": the class file can not be used (\"zemad_fmt check FMT --cds CDS\" says more)";
  for (const std::string& message : reading.messages) text.append("\n").append(message);
  throw Failure(ExitStatus::kBadData, text);
}

}  // namespace zem::fmt
