/// A line of the error description file names a pair and its destination,
///
///   KERNEL LOW /tmp/zemad.trace
///
/// and from then on every message of that pair is appended to that file as
///
///   Sun Nov  5 09:00:00 2023     LOW: KERNEL , err 00,           kernel line 0042: Starting ...
///
/// by one open, one write and one close. Between calls there is nothing but the table of
/// destinations and the last error.
#include "adapters/libzemad/error.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <optional>
#include <utility>

#include "adapters/libzemad/frame.h"
#include "agent/agent_util.h"
#include "util/heap.h"
#include "util/start_directory.h"
#include "util/text.h"
#include "util/unique_fd.h"

int zemad_errno = 0;
char ZEMAD_module_debugfile[zem::log::kModuleCount][zem::log::kSeverityCount][128] = {};

namespace {

using zem::log::kModuleCount;
using zem::log::kNormal;
using zem::log::kSeverityCount;
using zem::util::format_text;
using zem::util::HeapText;
using zem::util::UniqueFd;

constexpr zem::log::Source kSource{zem::log::kError, "error"};

constexpr std::array<std::string_view, kModuleCount> kModuleNames = {
    "ERROR", "UTILS", "PARSER", "KERNEL", "SELECT", "FETCH", "MAP", "DRIVER", "DRVSPEC", "ZEMIO"};
constexpr std::array<std::string_view, kSeverityCount> kSeverityNames = {
    "MINOR", "MAJOR", "FATAL", "LOW", "NORMAL", "VERBOSE"};

/// Exit codes of the last-resort report.
constexpr int kCanNotOpen = 1;
constexpr int kBadLine = 2;
constexpr int kCanNotFind = 4;

constexpr int kLineBytesMax = 511;
constexpr std::size_t kDestinationBytesMax = sizeof ZEMAD_module_debugfile[0][0] - 1;
constexpr std::size_t kSourceNameShown = 16;
constexpr int kUnnamedSource = -1;
/// A severity that is allowed and has no column in the table: always off.
constexpr int kSeverityWithoutColumn = kSeverityCount;

/// The description file in force: its path as it was written, and its modification time, which is
/// looked at in whole seconds of 32 bits.
struct Description {
  HeapText path;
  std::int32_t modified_s = 0;
};
Description& description() {
  static Description in_force;
  return in_force;
}

// Destinations ------------------------------------------------------------------------------------

bool is_error(int severity) { return severity >= zem::log::kMinor && severity <= zem::log::kFatal; }

bool is_in_range(int module, int severity) {
  return module >= 0 && module < kModuleCount && severity >= 0 &&
         severity <= kSeverityWithoutColumn;
}

/// The pair's path; empty when it is off. The pair is in range.
const char* destination(int module, int severity) {
  if (severity == kSeverityWithoutColumn) return "";
  return ZEMAD_module_debugfile[module][severity];
}

bool is_on(int module, int severity) { return *destination(module, severity) != '\0'; }

/// Never waits: a FIFO that nobody reads counts as one that can not be opened.
UniqueFd open_destination(const char* path) {
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  return UniqueFd(::open(path, kFlags, 0666));
}

/// What can not be written is lost without a report.
void write_all(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    if (written == 0 || (written < 0 && errno != EINTR)) return;
  }
}

// Messages ----------------------------------------------------------------------------------------

void (*what_is_older)() = nullptr;

void let_older_messages_pass() {
  if (what_is_older == nullptr) return;
  const int last_error = zemad_errno;
  std::exchange(what_is_older, nullptr)();
  zemad_errno = last_error;
}

/// The time as ctime(3) writes it, without its newline.
std::string time_stamp() {
  const std::time_t now = std::time(nullptr);
  char text[64] = "";
  ::ctime_r(&now, text);
  return std::string(text).substr(0, 24);
}

std::string header(int module, int severity, int number, std::string_view file, int line) {
  if (file.size() > kSourceNameShown) file.remove_prefix(file.size() - kSourceNameShown);
  return format_text("%24.24s %7.7s: %-7.7s, err %2.2d, %16.16s line %4.4d", time_stamp().c_str(),
                     kSeverityNames[static_cast<std::size_t>(severity)].data(),
                     kModuleNames[static_cast<std::size_t>(module)].data(), number,
                     std::string(file).c_str(), line);
}

// The description file ----------------------------------------------------------------------------

struct Pair {
  int module;
  int severity;
};

/// Index of `name` in `names`, or their number.
template <std::size_t Count>
int index_of(const std::array<std::string_view, Count>& names, std::string_view name) {
  return static_cast<int>(std::distance(names.begin(), std::ranges::find(names, name)));
}

/// The pair that two words name; nothing when the line is to be ignored. Deliberate: a word that is
/// no severity stands for the NORMAL of the module that follows in the table
/// (ErrorFileLines: UnknownSeverityCarriesOverToTheNextModule); the last module has none.
std::optional<Pair> pair_of(std::string_view module_name, std::string_view severity_name) {
  const int module = index_of(kModuleNames, module_name);
  if (module == kModuleCount) return std::nullopt;
  const int severity = index_of(kSeverityNames, severity_name);
  if (severity != kSeverityCount) return Pair{module, severity};
  if (module + 1 == kModuleCount) return std::nullopt;
  return Pair{module + 1, kNormal};
}

/// Takes the next word, bounded by white space, off `rest`; empty when there is none.
std::string_view take_word(std::string_view& rest) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

/// `line` without its last character.
void apply_line(std::string_view line) {
  std::string_view rest = line;
  const std::string_view module = take_word(rest);
  const std::string_view severity = take_word(rest);
  const std::string_view path = take_word(rest);
  if (path.empty()) {
    const std::string text = "invalid error config line: " + std::string(line);
    ZEMAD_ErrorInternal(kBadLine, text.c_str());
  }
  const auto pair = pair_of(module, severity);
  if (!pair || path == "/dev/null" || path.size() > kDestinationBytesMax) return;
  char* slot = ZEMAD_module_debugfile[pair->module][pair->severity];
  slot[path.copy(slot, kDestinationBytesMax)] = '\0';
}

/// Lines are read in pieces of 511 characters, and each piece loses its last one, newline or not.
void read_description(const char* path) {
  std::memset(ZEMAD_module_debugfile, 0, sizeof ZEMAD_module_debugfile);
  const zem::util::FilePtr file = zem::util::open_from_start(path);
  if (!file) {
    ZEMAD_ErrorInternal(kCanNotOpen,
                        format_text("can't open description file : %s\n", path).c_str());
  }
  char piece[kLineBytesMax + 1];
  while (std::fgets(piece, sizeof piece, file.get()) != nullptr) {
    std::string_view line = piece;
    if (line.starts_with('#')) continue;
    if (!line.empty()) line.remove_suffix(1);
    apply_line(line);
  }
}

HeapText description_path() {
  const char* configured = zem_agent_getenv("AdapterErrorFile");
  HeapText path(zem::util::duplicate(
      configured != nullptr
          ? configured
          : format_text("%s/%s.%s", ZEMAD_GlobalConfigDir, ZEMAD_ProgramName, "err").c_str()));
  if (!path) ZEMAD_ErrorInternal(kCanNotFind, "Malloc failed");
  return path;
}

std::int32_t modified_s(const char* path) {
  struct stat status {};
  if (zem::util::stat_from_start(path, &status) != 0) {
    ZEMAD_ErrorInternal(kCanNotFind,
                        format_text("Init: Stat failed on error file <%s>", path).c_str());
  }
  return static_cast<std::int32_t>(status.st_mtime);
}

}  // namespace

void ZEMAD_ErrorInit() {
  HeapText path = description_path();
  const std::int32_t modified = modified_s(path.get());
  Description& in_force = description();
  const bool is_same = in_force.path && std::strcmp(in_force.path.get(), path.get()) == 0;
  if (is_same && in_force.modified_s == modified) return;

  in_force = Description{std::move(path), modified};
  read_description(in_force.path.get());
  zem::log::note_destinations();
  zem::log::trace(kSource, format_text("Init: Error file is <%s>", in_force.path.get()).c_str());
}

void zem::log::note_destinations() {
  detail::traced = false;
  for (int module = kUtils; module < kModuleCount; ++module) {
    for (const int severity : {kLow, kNormal, kVerbose}) {
      detail::traced = detail::traced || is_on(module, severity);
    }
  }
}

void zem::log::before_next_message(void (*older)()) { what_is_older = older; }

void ZEMAD_ErrorReload() {
  zem::log::trace(kSource, "Reload Error Module ...");
  ZEMAD_ErrorInit();
}

void ZEMAD_ErrorCleanup() { zem::log::trace(kSource, "Cleanup Error Module ..."); }

int ZEMAD_Error(int module, const char* file, int line, int severity, int errnum,
                const char* text) {
  if (is_error(severity)) {
    zemad_errno =
        static_cast<int>(static_cast<unsigned>(module) * 100000U + static_cast<unsigned>(errnum));
  }
  if (!is_in_range(module, severity)) return 0;
  const bool is_unnamed = file == nullptr && line == 0;
  if (is_unnamed && text == nullptr) return is_on(module, severity) ? 1 : 0;
  if (!is_on(module, severity)) return zemad_errno;

  let_older_messages_pass();
  const UniqueFd log = open_destination(destination(module, severity));
  if (!log.is_open()) return zemad_errno;
  std::string message = header(module, severity, is_unnamed ? kUnnamedSource : errnum,
                               file == nullptr ? "" : file, line);
  message.append(": ").append(text == nullptr ? "" : text).append("\n");
  write_all(log.get(), message);
  return zemad_errno;
}

std::FILE* ZEMAD_ErrorStart(int module, int severity) {
  if (!is_in_range(module, severity) || !is_on(module, severity)) return nullptr;
  UniqueFd log = open_destination(destination(module, severity));
  std::FILE* stream = log.is_open() ? ::fdopen(log.get(), "a") : nullptr;
  if (stream != nullptr) static_cast<void>(log.release());
  return stream;
}

void ZEMAD_ErrorEnd(std::FILE* stream) {
  if (stream != nullptr) std::fclose(stream);
}

/// The console must exist already, else a plain file would appear in its place; a link below /tmp
/// may lead anywhere and is not followed.
void ZEMAD_ErrorInternal(int code, const char* text) {
  constexpr int kAppend = O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  constexpr int kOwnFile = kAppend | O_CREAT | O_NOFOLLOW;
  const std::string report = format_text("zemad EH : error %d %s\n", code, text);
  for (const auto& [path, flags] :
       {std::pair{"/dev/console", kAppend}, std::pair{"/tmp/zemadEH.log", kOwnFile},
        std::pair{"/usr/tmp/zemadEH.log", kOwnFile}}) {
    const UniqueFd log(::open(path, flags, 0666));
    if (log.is_open()) write_all(log.get(), report);
  }
  write_all(STDERR_FILENO, report);
  std::exit(code);
}
