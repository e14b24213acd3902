/// Modification times that do not depend on when a test runs.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <string>

#include "util/expect.h"

namespace zem::test {

inline void set_modified(const std::string& path, time_t seconds, long nanoseconds = 0) {
  const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
  util::expect(::utimensat(AT_FDCWD, path.c_str(), times, 0) == 0, "the file's time can be set");
}

}  // namespace zem::test
