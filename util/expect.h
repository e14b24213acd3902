/// Checks of our own reasoning, on in every build; never for input. A failed check names the place
/// on standard error and aborts.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "util/source_location.h"

namespace zem::util {

inline void expect(bool holds, const char* what, SourceLocation where = SourceLocation::current()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: internal error: %s\n", where.file_name(), where.line(), what);
  std::abort();
}

}  // namespace zem::util
