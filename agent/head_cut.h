/// Takes bytes off the top of a file in place, so that a process killed at any moment loses and
/// repeats nothing: a half-done cut leaves a record at the end of the file, and whoever opens it
/// next finishes the cut first. The file is never renamed, since others may be appending to it.
#pragma once

#include <sys/types.h>

#include "util/result.h"

namespace zem::agent {

/// Removes the first `bytes` bytes (all of them when there are not so many). What others append
/// meanwhile is kept. The caller holds the file's lock, and the last byte of the file is an event's
/// end.
[[nodiscard]] util::Status cut_head(int fd, off_t bytes);

/// True when a cut that was begun, and not finished, has left its record at the end of the file.
[[nodiscard]] bool ends_in_unfinished_cut(int fd);
/// Finishes such a cut, if there is one; also when others have appended behind its record while it
/// was going on. Reads the whole file. The caller holds the file's lock.
[[nodiscard]] util::Status finish_cut(int fd);

}  // namespace zem::agent
