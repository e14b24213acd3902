/// Keeps a slip of the hand from destroying what was to be read: an output file that is also an
/// input, under whatever name, is refused before it is opened.
#pragma once

#include <span>
#include <string>

namespace zem::fmt {

/// A Failure (kUsage) when `output` is the same regular file as one of `inputs`; "-" among these is
/// standard input. Files that do not exist are nobody else.
void require_other_file(const std::string& output, std::span<const std::string> inputs);

}  // namespace zem::fmt
