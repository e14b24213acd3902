/// Checks of our own reasoning, on in every build; never for input. A failed check names the place
/// on standard error and aborts.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <source_location>

namespace zem::util {

inline void expect(bool holds, const char* what,
                   std::source_location where = std::source_location::current()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: internal error: %s\n", where.file_name(),
               static_cast<unsigned>(where.line()), what);
  std::abort();
}

}  // namespace zem::util
