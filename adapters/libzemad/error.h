/// The error and trace log: one destination file per pair of module and severity, read from the
/// error description file. Every message opens and closes its destination, so files may be moved
/// away at any time; a pair without a destination is silent and costs one look at a table.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "util/source_location.h"

namespace zem::log {

enum Module : int {
  kError,
  kUtils,
  kParser,
  kKernel,
  kSelect,
  kFetch,
  kMap,
  kDriver,
  kDrvSpec,
  kZemIo,
};
inline constexpr int kModuleCount = 10;

enum Severity : int {
  kMinor,    ///< errors of one event or one wait, after which the loop goes on
  kMajor,    ///< errors such as a failed reload or a rejected argument
  kFatal,    ///< errors after which the caller exits
  kLow,      ///< trace of normal progress, and the first of the two lines of most errors
  kNormal,   ///< detailed dumps
  kVerbose,  ///< entry to and exit from functions, every release of memory
};
inline constexpr int kSeverityCount = 6;

}  // namespace zem::log

/// The last error: module x 100000 + error number. Set by MINOR, MAJOR and FATAL messages only.
extern int zemad_errno;
/// Destination paths; an empty one is off.
extern char ZEMAD_module_debugfile[zem::log::kModuleCount][zem::log::kSeverityCount][128];

/// Finds, reads and applies the error description file; ends the process when it can not.
void ZEMAD_ErrorInit();
/// Reads it again when its path or modification time has changed.
void ZEMAD_ErrorReload();
/// Traces only: the destinations stay in force.
void ZEMAD_ErrorCleanup();

/// Logs one finished message (`text` is data, never a format). Returns `zemad_errno`, or 0 when
/// module or severity is out of range. With no file, line 0 and no text it is a question: non-zero
/// when the pair has a destination.
int ZEMAD_Error(int module, const char* file, int line, int severity, int errnum, const char* text);

/// The pair's destination opened for appending, for a dump of many lines; null when it is off or
/// out of range. Closed by ZEMAD_ErrorEnd, which allows null.
[[nodiscard]] std::FILE* ZEMAD_ErrorStart(int module, int severity);
void ZEMAD_ErrorEnd(std::FILE* stream);

/// Last resort: console, fixed files, standard error, then exit(code).
[[noreturn]] void ZEMAD_ErrorInternal(int code, const char* text);

namespace zem::log {

/// Where messages come from: the module that speaks and the source name in their header.
struct Source {
  Module module;
  const char* name;
};

/// True when someone listens: ask before building costly text. The question of ZEMAD_Error, without
/// a call, and without a trace in `zemad_errno`.
[[nodiscard]] inline bool listens(Module module, Severity severity) {
  return ZEMAD_module_debugfile[module][severity][0] != '\0';
}

namespace detail {
inline bool traced = false;
}  // namespace detail

/// True when anybody listens to LOW, NORMAL or VERBOSE of a module that an event meets on its way.
/// One look at a flag, for a question that is asked about every event.
[[nodiscard]] inline bool is_traced() { return detail::traced; }
/// Brings that flag in step with ZEMAD_module_debugfile: for whoever has changed the table.
void note_destinations();

/// Lets `older` be called once, right before the next message is written: for what would have been
/// reported earlier, had it not been put off. Its messages come first then, and the error that the
/// next one sets stays the last. Null takes the wish back.
void before_next_message(void (*older)());

inline void report(const Source& source, Severity severity, int number, const char* text,
                   util::SourceLocation where = util::SourceLocation::current()) {
  ZEMAD_Error(source.module, source.name, static_cast<int>(where.line()), severity, number, text);
}

/// Progress: LOW, number 0, unless another level is named.
inline void trace(const Source& source, const char* text, Severity severity = kLow,
                  util::SourceLocation where = util::SourceLocation::current()) {
  if (listens(source.module, severity)) report(source, severity, 0, text, where);
}

/// The usual pair of lines of a failure: LOW with number 0, then `severity` with `number`.
inline void fail(const Source& source, Severity severity, int number, const char* text,
                 util::SourceLocation where = util::SourceLocation::current()) {
  report(source, kLow, 0, text, where);
  report(source, severity, number, text, where);
}

}  // namespace zem::log
