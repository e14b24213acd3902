#include "agent/agent_util.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "agent/event_filter.h"
#include "util/heap.h"
#include "util/start_directory.h"
#include "util/text.h"

// How a file becomes a store, by example (the number is the one that messages report, one above the
// line's place in the file):
//
//   2  # a comment                    ignored
//   3  ServerLocation=hostA,hostB     pair ("ServerLocation", "hostA,hostB")
//   4  ServerPort =5529               pair ("ServerPort ", "5529"): nothing is trimmed
//   5  Filter:Class=Su_Failed;        handed to the send filters
//   6  PreFilter:x=y                  pair under the whole line, which nobody looks up
//   7  nonsense                       "syntax error in configuration file, line 7 ignored"

using zem::util::HeapText;

zem_agent_info default_agent_info;

namespace {

constexpr const char* kDefaultPath = "/etc/Korvane/zemad_obx.conf";
constexpr int kDefaultRetryIntervalS = 120;
constexpr std::array<std::string_view, 3> kFilterKeys = {"Filter:", "FilterCache:", "PreFilter:"};

bool begins_with(const char* text, std::string_view word) {
  return std::string_view(text).starts_with(word);
}

/// The next physical lines up to one that ends in a newline, joined, without it. False when the
/// file ends first.
bool read_joined(std::FILE* file, std::string& line) {
  std::array<char, 512> piece{};
  while (std::fgets(piece.data(), piece.size(), file) != nullptr) {
    line += piece.data();
    if (line.ends_with('\n')) {
      line.pop_back();
      return true;
    }
  }
  return false;
}

/// Finds key and value in a line, in place; both stay null where there are none.
void split_line(char* line, char** key, char** value) {
  if (*line == '#' || *line == '\n') return;
  for (const std::string_view filter_key : kFilterKeys) {
    if (!begins_with(line, filter_key)) continue;
    *key = line;
    *value = line + filter_key.size();
    return;
  }
  char* const equals = std::strchr(line, '=');
  if (equals == nullptr) return;
  *equals = '\0';
  *key = line;
  *value = equals + 1;
}

void clear_store() {
  SL_DelAll(default_agent_info.environment, zem::util::sl_free<zem_env_delete>);
  default_agent_info.environment = SL_Create();
  if (default_agent_info.environment == nullptr) fatal_memory_error();
  default_agent_info.is_filter_mode_in = false;
  zem_filters_clear();
}

void store_pair(HeapText line, char* key, char* value) {
  auto* pair = static_cast<zem_env_pair*>(zem::util::allocate(sizeof(zem_env_pair)));
  if (pair == nullptr) fatal_memory_error();
  *pair = {key, value};
  if (SL_InsLast(default_agent_info.environment, pair) == 0) fatal_memory_error();
  static_cast<void>(line.release());  // the pair's from here on
}

void report_syntax_error(int line_number) {
  std::printf("syntax error in configuration file, line %d ignored\n", line_number);
}

void handle_line(HeapText line, char* key, char* value, int line_number) {
  if (key == nullptr) {
    const bool is_blank = *line == '\0' || *line == '#' || *line == '\n';
    if (!is_blank) report_syntax_error(line_number);
  } else if (begins_with(key, "Filter:")) {
    if (zem_add_filter(value, 0) < 0) report_syntax_error(line_number);
  } else if (begins_with(key, "FilterCache:")) {
    if (zem_add_filter(value, 1) < 0) report_syntax_error(line_number);
  } else {
    store_pair(std::move(line), key, value);
  }
}

void read_lines(std::FILE* file) {
  char* key = nullptr;
  char* value = nullptr;
  // Deliberate: counted before the line is handled, so the first line is reported as line 2
  // (SenderConfiguration.ReportsLinesOneAboveTheirPlace).
  int line_number = 1;
  while (HeapText line{read_conf_line(file, &key, &value)}) {
    ++line_number;
    handle_line(std::move(line), key, value, line_number);
  }
}

int take_configured_locations(zem_handle& handle) {
  int count = 0;
  char** const fields = zem_split_entries("ServerLocation", &count);
  for (int i = 0; i < count && handle.location_count < kLocationsMax; ++i) {
    handle.locations[static_cast<std::size_t>(handle.location_count++)] = fields[i];
  }
  return count;
}

void take_locations(zem_handle& handle, const char* location, const char* fallback) {
  if (location != nullptr)
    handle.locations[static_cast<std::size_t>(handle.location_count++)] = location;
  const int configured = take_configured_locations(handle);
  if (location != nullptr || configured > 0 || fallback == nullptr) return;
  handle.locations[0] = fallback;
  handle.location_count = 1;
}

void clear_configuration(zem_handle& handle) {
  handle.locations.fill({});
  if (handle.test_stream != nullptr) std::fclose(handle.test_stream);
  handle.test_stream = nullptr;
  handle.location_count = 0;
  handle.retry_interval_s = 0;
  handle.flushing = false;
  handle.test_mode = false;
  handle.unfiltered = false;
}

/// Opens the test file, emptied; 0 or an errno value. A FIFO waits for its reader, signals or not.
int open_test_file(zem_handle& handle) {
  handle.test_mode = true;
  do {
    handle.test_stream = std::fopen(handle.locations[0].c_str(), "we");
  } while (handle.test_stream == nullptr && errno == EINTR);
  return handle.test_stream != nullptr ? 0 : errno;
}

int configured_retry_interval_s() {
  const char* const value = zem_agent_getenv("RetryInterval");
  const int interval_s = value == nullptr ? 0 : zem::util::saturating_atoi(value);
  return interval_s == 0 ? kDefaultRetryIntervalS : interval_s;
}

}  // namespace

int common_agent_init(const char* path) {
  clear_store();
  const bool is_default = path == nullptr;
  if (is_default) path = kDefaultPath;
  struct stat status {};
  if (zem::util::stat_from_start(path, &status) != 0) {
    if (is_default) return 0;
    std::perror("stat failed");
    return 2;
  }
  if (!S_ISREG(status.st_mode)) {
    std::printf("%s: Not a regular file\n", path);
    return 3;
  }
  const zem::util::FilePtr file = zem::util::open_from_start(path);
  if (file == nullptr) {
    std::printf("%s: Can not fopen\n", path);
    return 4;
  }
  read_lines(file.get());
  default_agent_info.is_filter_mode_in = zem_agent_match("FilterMode", "IN") != 0;
  return 0;
}

char* read_conf_line(std::FILE* file, char** key, char** value) try {
  *key = nullptr;
  *value = nullptr;
  std::string text;
  if (!read_joined(file, text)) return nullptr;
  HeapText line(zem::util::duplicate(text));
  if (line == nullptr) fatal_memory_error();
  split_line(line.get(), key, value);
  return line.release();
} catch (const std::bad_alloc&) {
  fatal_memory_error();
}

const char* zem_agent_getenv(const char* key) {
  const void* const pair = SL_Find(default_agent_info.environment, key, zem_env_search);
  return pair == nullptr ? nullptr : static_cast<const zem_env_pair*>(pair)->value;
}

int zem_env_search(const void* pair, const void* key) {
  if (pair == nullptr || key == nullptr) return 0;
  const char* const own = static_cast<const zem_env_pair*>(pair)->key;
  return own != nullptr && std::strcmp(own, static_cast<const char*>(key)) == 0 ? 1 : 0;
}

void zem_env_delete(zem_env_pair* pair) {
  if (pair == nullptr) return;
  zem::util::release(pair->key);  // the start of the line
  zem::util::release(pair);
}

int zem_agent_match(const char* key, const char* word) {
  const char* value = zem_agent_getenv(key);
  if (value == nullptr) return 0;
  for (; *word != '\0'; ++word, ++value) {
    if (std::toupper(static_cast<unsigned char>(*value)) != static_cast<unsigned char>(*word))
      return 0;
  }
  return 1;
}

char** zem_split_entries(const char* key, int* count) {
  static std::string copy;
  static std::array<char*, kLocationsMax> fields;
  *count = 0;
  const char* const value = zem_agent_getenv(key);
  if (value == nullptr) return fields.data();
  copy = value;
  char* rest = nullptr;
  for (char* field = ::strtok_r(copy.data(), ",", &rest);
       field != nullptr && *count < kLocationsMax; field = ::strtok_r(nullptr, ",", &rest)) {
    fields[static_cast<std::size_t>((*count)++)] = field;
  }
  return fields.data();
}

int common_agent_handle_init(zem_handle* handle, const char* location, const char* fallback) {
  clear_configuration(*handle);
  take_locations(*handle, location, fallback);
  if (zem_agent_match("TestMode", "YES") != 0) {
    const int error = open_test_file(*handle);
    if (error != 0) return error;
  }
  handle->retry_interval_s = configured_retry_interval_s();
  return 0;
}

int common_agent_get_retry(const zem_handle* handle) { return handle->retry_interval_s; }

void fatal_memory_error() {
  std::fputs("Memory allocation failure, exiting...\n", stderr);
  std::exit(1);
}

namespace zem::agent {

bool is_filter_mode_in() { return default_agent_info.is_filter_mode_in; }

}  // namespace zem::agent
