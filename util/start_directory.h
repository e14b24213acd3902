/// The directory the daemon was started in. The daemon changes into its configuration directory
/// while it starts; a path on the command line, and the paths derived from it, go on meaning what
/// they meant to the one who typed them, also on a reload much later.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>

namespace zem::util {

/// Takes note of the current directory. Without it (and when it can not be opened) the functions
/// below mean the current directory of the moment.
void remember_start_directory();

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

/// stat(2) of a path that is relative to the start directory, when it is relative at all.
int stat_from_start(const char* path, struct stat* status);
/// Opens such a path for reading, close-on-exec; null with errno on failure.
[[nodiscard]] FilePtr open_from_start(const char* path);

}  // namespace zem::util
