/// Writing a file so that whoever looks sees the old one or the new one, and never a half.
#pragma once

#include <string>
#include <string_view>

namespace zem::fmt {

/// Writes `text` beside `path` and renames that over it; the old file's permissions stay. A
/// Failure, with the old file untouched, when any step fails: kNoOutput when the file beside can
/// not be made, kOutputError later. What is no regular file (a terminal, a pipe, /dev/stdout) is
/// written to as it is; a symbolic link keeps pointing where it does.
void replace_file(const std::string& path, std::string_view text);

}  // namespace zem::fmt
