/// The event client's only way to tell what it met on the way (a cache file it can not open, a torn
/// event it removed): it reports by return values and prints nothing of its own, so whoever has a
/// log takes these lines.
#pragma once

#include <functional>
#include <string_view>

namespace zem::agent {

/// Takes one line without newline.
using TraceSink = std::function<void(std::string_view line)>;

/// Lines go to `sink` from now on; to nobody when it is empty, as at the start.
void set_trace(TraceSink sink);
/// Asked before a costly line is built.
[[nodiscard]] bool is_traced();
void trace(std::string_view line);

}  // namespace zem::agent
