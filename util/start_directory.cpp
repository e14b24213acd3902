#include "util/start_directory.h"

#include <fcntl.h>

#include "util/unique_fd.h"

namespace zem::util {
namespace {

UniqueFd& start_directory() {
  static UniqueFd directory;
  return directory;
}

int base() {
  const int fd = start_directory().get();
  return fd == -1 ? AT_FDCWD : fd;
}

}  // namespace

void remember_start_directory() {
  start_directory() = UniqueFd(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
}

int stat_from_start(const char* path, struct stat* status) {
  return ::fstatat(base(), path, status, 0);
}

FilePtr open_from_start(const char* path) {
  UniqueFd fd(::openat(base(), path, O_RDONLY | O_CLOEXEC));
  FilePtr file(fd.is_open() ? ::fdopen(fd.get(), "r") : nullptr);
  if (file != nullptr) (void)fd.release();
  return file;
}

}  // namespace zem::util
