#include "agent/evt_buffer.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "agent/cache_file.h"
#include "agent/cache_flush.h"
#include "agent/cache_settings.h"
#include "agent/event_filter.h"
#include "util/heap.h"
#include "util/result.h"

namespace {

using zem::agent::buffer_config;
using zem::agent::CacheFile;
using zem::agent::kEventEnd;
using zem::util::Result;
using zem::util::Status;

constexpr int kFailed = -1;
constexpr int kNotShrunk = -2;

bool is_directory(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

int make_directory_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? 0 : MkDirR(path.substr(0, slash).c_str());
}

int report(const std::string& path, const Status& failure) {
  zem::agent::trace_cache(path, failure.error().text() + "; the event is not cached");
  return kFailed;
}

bool has_room(off_t size, std::size_t length) {
  return size + static_cast<off_t>(length) <= buffer_config().max_bytes;
}

/// Drops whole events at the top, shrink-size bytes of them at least; 0, or the negative result of
/// the append.
int drop_oldest(CacheFile& file, off_t size) {
  const off_t shrink = buffer_config().shrink_bytes;
  if (size == shrink) return kNotShrunk;
  const Result<off_t> cut = size < shrink ? Result<off_t>(size) : file.end_of_event(shrink);
  const Status shrunk = cut ? file.remove_head(cut.value()) : Status(cut.error());
  return shrunk.ok() ? 0 : report(file.path(), shrunk);
}

/// Makes room for `length` bytes; 0, or the negative result of the append.
int make_room(CacheFile& file, std::size_t length) {
  Result<off_t> size = file.size();
  if (!size) return report(file.path(), size.error());
  if (has_room(size.value(), length)) return 0;
  // Places in the file must not move under a flush, ours or another process's, and what it has sent
  // is about to leave the top: the file may be too large until then.
  if (zem::agent::is_flush_under_way() || !file.lock()) return 0;
  const Status finished = file.finish_head_cut();
  if (!finished.ok()) return report(file.path(), finished);
  size = file.size();
  if (!size) return report(file.path(), size.error());
  return has_room(size.value(), length) ? 0 : drop_oldest(file, size.value());
}

int append_to_cache(const std::string& path, const std::string& events) {
  Result<CacheFile> file = CacheFile::open(path, CacheFile::Missing::kCreate);
  if (!file) return report(path, file.error());
  const Status repaired = file->repair();
  if (!repaired.ok()) return report(path, repaired);
  const int room = make_room(*file, events.size());
  if (room != 0) return room;
  const Status appended = file->append(events);
  return appended.ok() ? static_cast<int>(events.size()) : report(path, appended);
}

}  // namespace

int zem_buffer_event(const char* text) { return zem::agent::cache_event(text); }

int zem_buffer_event_to_file(const char* text, const char* path) {
  if (!buffer_config().is_caching_on) return kFailed;
  const std::optional<std::string> events = filter_events(text);
  if (!events) return 0;
  const std::string target = path == nullptr ? buffer_config().path : path;
  const int made = make_directory_of(target);
  if (made != 0) return made;
  std::fprintf(stderr, "Opening cache file: %s\n", target.c_str());
  return append_to_cache(target, *events);
}

long zem_event_buffer_size(zem_handle* /*handle*/, const char* path, int* fd) {
  const std::string target = path == nullptr ? buffer_config().path : path;
  Result<CacheFile> file = CacheFile::open(target, CacheFile::Missing::kFail);
  if (!file) {
    errno = file.error().code;
    return -1;
  }
  const Result<off_t> size = file->size();
  if (!size) return -1;
  if (fd != nullptr) *fd = file->release();
  return size.value();
}

std::optional<std::string> filter_events(std::string_view text) {
  std::string kept;
  bool any_passed = text.empty();
  while (!text.empty()) {
    const std::size_t end = text.find(kEventEnd);
    const bool is_complete = end != std::string_view::npos;
    const std::string event(text.substr(0, is_complete ? end + 1 : text.size()));
    text.remove_prefix(event.size());
    if (is_complete && zem_filter_event(event.c_str(), 1) == 1) continue;
    any_passed = true;
    kept += event;
  }
  return any_passed ? std::optional(std::move(kept)) : std::nullopt;
}

int trunc_at_top(const char* path, long n) {
  Result<CacheFile> file = CacheFile::open(path, CacheFile::Missing::kFail);
  if (!file) return kFailed;
  return file->remove_head(n).ok() ? 0 : kFailed;
}

int MkDirR(const char* dir) {
  const std::string path(dir);
  if (path.empty() || is_directory(path)) return 0;
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    if (::mkdir(part.c_str(), 0755) != 0 && !is_directory(part)) return kFailed;
    if (end == std::string::npos) return 0;
  }
}

void zem_free_func(void* memory) { zem::util::release(memory); }

namespace zem::agent {

int cache_event(std::string_view event) {
  std::string text(event);
  if (!text.empty()) std::replace(text.begin(), text.end() - 1, kEventEnd, ' ');
  return zem_buffer_event_to_file(text.c_str(), nullptr);
}

bool may_cache_hold_events() {
  struct stat status {};
  if (::lstat(buffer_config().path.c_str(), &status) != 0) return false;
  return S_ISREG(status.st_mode) && status.st_size > 0;
}

}  // namespace zem::agent
