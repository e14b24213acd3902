#include "agent/cache_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "agent/event_filter.h"
#include "agent/file_blocks.h"
#include "agent/head_cut.h"
#include "agent/trace.h"

namespace zem::agent {
namespace {

using util::Error;
using util::last_error;
using util::Result;
using util::Status;

constexpr mode_t kMode = 0744;
constexpr std::size_t kSearchBytes = 65536;

/// Offset just behind the last event end before `end`; 0 when there is none. Nearly always that is
/// `end` itself, so the first look is a short one.
Result<off_t> end_of_last_event(int fd, off_t end) {
  std::vector<char> block(1);
  while (end > 0) {
    const auto length = std::min<off_t>(end, static_cast<off_t>(block.size()));
    const auto got = read_at(fd, end - length, {block.data(), static_cast<std::size_t>(length)});
    if (!got) return got.error();
    const std::size_t found = std::string_view(block.data(), got.value()).rfind(kEventEnd);
    if (found != std::string_view::npos) return end - length + static_cast<off_t>(found) + 1;
    end -= length;
    block.resize(kSearchBytes);
  }
  return 0;
}

}  // namespace

Result<CacheFile> CacheFile::open(const std::string& path, Missing missing) {
  // O_NONBLOCK: a FIFO in the file's place must not be waited on; it is refused below.
  const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY |
                    (missing == Missing::kCreate ? O_CREAT : 0);
  int number = -1;
  do {
    number = ::open(path.c_str(), flags, kMode);
  } while (number == -1 && errno == EINTR);
  util::UniqueFd fd(number);
  if (!fd.is_open()) return last_error("open", path);
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return last_error("stat", path);
  if (!S_ISREG(status.st_mode)) return Error{"open", path, EINVAL};
  return CacheFile(path, std::move(fd));
}

bool CacheFile::lock() {
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return ::fcntl(fd_.get(), F_SETLK, &whole) == 0;
}

Result<off_t> CacheFile::size() const { return size_of(fd_.get()); }

Status CacheFile::cut_torn_tail() {
  const auto size = size_of(fd_.get());
  if (!size) return size.error();
  const auto end = end_of_last_event(fd_.get(), size.value());
  if (!end) return end.error();
  if (end.value() == size.value()) return {};
  trace_cache(path_, "cut off " + std::to_string(size.value() - end.value()) +
                         " bytes of an event without its end");
  return truncate_to(fd_.get(), end.value());
}

Status CacheFile::repair() {
  Status cut = cut_torn_tail();
  if (!cut.ok()) return cut;
  if (!ends_in_unfinished_cut(fd_.get()) || !lock()) return {};
  trace_cache(path_, "finishes taking sent events off the top");
  return finish_head_cut();
}

Status CacheFile::finish_head_cut() { return finish_cut(fd_.get()); }

Status CacheFile::append(std::string_view events) { return append_to(fd_.get(), events); }

Status CacheFile::remove_head(off_t bytes) { return cut_head(fd_.get(), bytes); }

Status CacheFile::erase(off_t at, std::size_t length) {
  const std::string nothing(length - 1, kEventEnd);
  if (crosses_block(at, nothing.size())) {
    // A kill could end the write between two blocks and leave a piece of the event. So its last
    // byte goes first, by itself: is_half_erased tells such an event by the end beside its end.
    const off_t last = at + static_cast<off_t>(nothing.size()) - 1;
    Status marked = write_at(fd_.get(), last, {&kEventEnd, 1});
    if (!marked.ok()) return marked;
  }
  return write_at(fd_.get(), at, nothing);
}

bool CacheFile::is_half_erased(off_t at, std::size_t length) const {
  if (at % kAtomicBlock != 0 && !crosses_block(at, length)) return false;
  char behind = '\0';
  const auto got = read_at(fd_.get(), at + static_cast<off_t>(length), {&behind, 1});
  return got && got.value() == 1 && behind == kEventEnd;
}

Result<std::size_t> CacheFile::read(off_t at, std::span<char> out) const {
  return read_at(fd_.get(), at, out);
}

Result<off_t> CacheFile::end_of_event(off_t from) const {
  std::vector<char> block(kSearchBytes);
  for (;;) {
    const auto got = read_at(fd_.get(), from, block);
    if (!got) return got.error();
    const std::size_t found = std::string_view(block.data(), got.value()).find(kEventEnd);
    if (found != std::string_view::npos) return from + static_cast<off_t>(found) + 1;
    from += static_cast<off_t>(got.value());
    if (got.value() < block.size()) return from;
  }
}

void trace_cache(std::string_view path, std::string_view what) {
  if (!is_traced()) return;
  trace(std::string("cache file ").append(path).append(": ").append(what));
}

}  // namespace zem::agent
