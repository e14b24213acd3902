/// A load is tried only when the path or the modification time differs from the last attempt, good
/// or bad: a broken file is reported once, and again when it has changed. During a reload the old
/// lists stand aside and come back when the new file is refused.
#include "adapters/libzemad/parse_config.h"

#include <sys/stat.h>

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/frame.h"
#include "adapters/libzemad/parse.h"
#include "adapters/libzemad/record_dump.h"
#include "agent/agent_util.h"
#include "util/heap.h"
#include "util/start_directory.h"
#include "util/text.h"

SL_List* ZEMAD_ConfigurationList = nullptr;
SL_List* ZEMAD_DefaultMapList = nullptr;

namespace {

using zem::log::kMajor;
using zem::log::kNormal;
using zem::util::format_text;
using zem::util::HeapText;

constexpr zem::log::Source kSource{zem::log::kParser, "parse_config"};

constexpr char kPathKey[] = "AdapterCdsFile";

constexpr int kLoaded = 0;
constexpr int kUnchanged = 1;
constexpr int kBadFile = -1;
constexpr int kNotExamined = -4;

constexpr int kErrorBadFile = 1;
constexpr int kErrorNotExamined = 4;

/// The last attempt to load a file. The time is in whole seconds of 32 bits.
struct LastAttempt {
  HeapText path;
  std::optional<std::int32_t> modified_s;
};
LastAttempt& last_attempt() {
  static LastAttempt attempt;
  return attempt;
}

/// The file while it is loaded.
constinit zem::util::FilePtr open_file;

// The three lists ---------------------------------------------------------------------------------

struct Lists {
  SL_List* configuration = nullptr;
  SL_List* constants = nullptr;
  SL_List* default_maps = nullptr;
};

/// What was in force, leaving nothing behind.
Lists take_lists() {
  zem::kernel::forget_constant_index();
  zem::kernel::forget_compiled_classes();
  return {std::exchange(ZEMAD_ConfigurationList, nullptr),
          std::exchange(ZEMAD_ConstantList, nullptr), std::exchange(ZEMAD_DefaultMapList, nullptr)};
}

void put_back(const Lists& lists) {
  ZEMAD_ConfigurationList = lists.configuration;
  ZEMAD_ConstantList = lists.constants;
  ZEMAD_DefaultMapList = lists.default_maps;
  zem::kernel::compile_classes();
}

void free_lists(const Lists& lists) {
  SL_DelAll(lists.configuration, zem::util::sl_free<ZEMAD_FreeConfig>);
  SL_DelAll(lists.constants, zem::util::sl_free<ZEMAD_FreeAttributeEntry>);
  SL_DelAll(lists.default_maps, zem::util::sl_free<ZEMAD_FreeMap>);
}

void dump_lists() {
  const zem::kernel::RecordDump dump(kSource.module, kNormal);
  if (!dump) return;
  dump.write_list("ZEMAD_ConfigurationList\n\n", ZEMAD_ConfigurationList, ZEMAD_PrintConfig);
  dump.write_list("\nZEMAD_ConstantList\n\n", ZEMAD_ConstantList, ZEMAD_PrintAttributeEntry);
  dump.write_list("\nZEMAD_DefaultMapList\n\n", ZEMAD_DefaultMapList, ZEMAD_PrintMap);
}

// Loading -----------------------------------------------------------------------------------------

void report(const char* text, int number) { zem::log::report(kSource, kMajor, number, text); }

/// Null, after a report, when memory is short.
HeapText class_file_path() {
  const char* configured = zem_agent_getenv(kPathKey);
  HeapText path(zem::util::duplicate(
      configured != nullptr
          ? configured
          : format_text("%s/%s.%s", ZEMAD_GlobalConfigDir, ZEMAD_ProgramName, "cds").c_str()));
  if (!path) {
    report(configured != nullptr ? "Strdup failed" : "Malloc failed", kErrorNotExamined);
    return nullptr;
  }
  zem::log::trace(kSource, format_text("Init: Kernel config file is <%s>", path.get()).c_str());
  return path;
}

/// Nothing, after a report, when the file can not be examined.
std::optional<std::int32_t> modified_s(const char* path) {
  struct stat status {};
  if (zem::util::stat_from_start(path, &status) == 0) {
    return static_cast<std::int32_t>(status.st_mtime);
  }
  report("Stat failed, does file exists ?", kErrorNotExamined);
  return std::nullopt;
}

/// Compares with the last attempt and takes note of this one: kLoaded when there is something to
/// load, else the result of the whole attempt.
int note_attempt(HeapText path) {
  LastAttempt& last = last_attempt();
  const bool is_first = !last.path;
  const bool is_same = !is_first && std::strcmp(last.path.get(), path.get()) == 0;
  if (!is_same) {
    zem::log::trace(kSource, is_first ? "Init, first call" : "Filename changed");
    last = LastAttempt{std::move(path), std::nullopt};
  }
  const auto modified = modified_s(last.path.get());
  if (!modified) return kNotExamined;
  if (is_same && modified == last.modified_s) return kUnchanged;
  if (is_same) zem::log::trace(kSource, "Time changed");
  last.modified_s = modified;
  return kLoaded;
}

/// As far as it can be read.
std::string contents(std::FILE* file) {
  constexpr std::size_t kBlockBytes = 64UL * 1024;
  struct stat status {};
  std::string text;
  if (::fstat(::fileno(file), &status) == 0 && status.st_size > 0) {
    text.reserve(static_cast<std::size_t>(status.st_size) + kBlockBytes);
  }
  std::size_t bytes = 0;
  do {
    const std::size_t begin = text.size();
    text.resize(begin + kBlockBytes);
    bytes = std::fread(text.data() + begin, 1, kBlockBytes, file);
    text.resize(begin + bytes);
  } while (bytes > 0);
  return text;
}

/// Parses the open file; what could not be read to its end is not usable either. The text is read
/// in one go: a call of `zemad_getchar` for each byte would be a tenth of the time.
bool parse_open_file(const char* path) {
  const int result = zemad_parse(std::string_view(contents(open_file.get())), path);
  const bool was_readable = std::ferror(open_file.get()) == 0;
  open_file.reset();
  return result == 0 && was_readable;
}

int load(const char* path) {
  open_file = zem::util::open_from_start(path);
  if (!open_file) {
    report(format_text("Kernel config file <%s> could not be opened", path).c_str(), kErrorBadFile);
    return kBadFile;
  }
  if (parse_open_file(path)) return kLoaded;
  free_lists(take_lists());
  const char* configured = zem_agent_getenv(kPathKey);
  report(format_text("Kernel config file <%s> could not be parsed",
                     configured != nullptr ? configured : path)
             .c_str(),
         kErrorBadFile);
  return kBadFile;
}

}  // namespace

int ZEMAD_KernelInit() {
  HeapText path = class_file_path();
  if (!path) return kNotExamined;
  const int noted = note_attempt(std::move(path));
  if (noted != kLoaded) return noted;
  const int loaded = load(last_attempt().path.get());
  if (loaded != kLoaded) return loaded;
  zem::kernel::compile_classes();
  dump_lists();
  return kLoaded;
}

int ZEMAD_KernelReload() {
  zem::log::trace(kSource, "Reload Kernel configuration ...");
  const Lists old = take_lists();
  const int loaded = ZEMAD_KernelInit();
  if (loaded == kLoaded) {
    zem::log::trace(kSource, "Kernel old configuration freed", kNormal);
    free_lists(old);
    zem::log::trace(kSource, "Reload Kernel configuration completed");
    return 1;
  }
  put_back(old);
  if (loaded == kUnchanged) {
    zem::log::trace(kSource, "Not reloading kernel (no changes)");
    return 1;
  }
  report("Can not reload kernel", kErrorBadFile);
  report("Old configuration reinstalled", kErrorBadFile);
  return 0;
}

int ZEMAD_KernelCleanup() {
  zem::log::trace(kSource, "Kernel configuration cleaned up");
  free_lists(take_lists());
  return 1;
}

int zemad_getchar() { return open_file ? ::getc_unlocked(open_file.get()) : -1; }
