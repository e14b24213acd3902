/// Reading a format file into a format set. The reader joins the scanner (format_scanner.h), the
/// grammar (config.y) and the builder of entries (format_builder.h); it holds the state that they
/// share and makes the reports of the language. One file is read at a time.
#pragma once

#include <string_view>

#include "adapters/logfile/common/format_scanner.h"

class FormatSpec;
class LogDriver;
class PrintMapEntry;

extern int offset;            ///< position inside the current entry, see zem::format::EntryOffset
extern LogDriver* driver;     ///< the set being filled
extern FormatSpec* fmt;       ///< the entry under construction
extern PrintMapEntry* print;  ///< the PRINTF slot under construction

/// Adds the entries of the file at `path` to `set`, in file order. Returns 0 when the whole file
/// was accepted and `status` is 0, else 1; faults are reported through `efcn` and `wfcn`. Reading
/// stops at the first syntax error; the entries built before, the one at fault included, stay in
/// the set.
///
/// Deliberate: `status` is not cleared, and what the scanner had not read when an earlier file
/// failed comes before this file's text, so that after one failure every later read fails too
/// (ReadFmt.FailureStaysUntilStatusIsCleared). Whoever reads on sets `status` to 0 first, which
/// clears the rest along with it.
///
/// A file that opens but can not be read, or is larger than 256 MiB, ends the process with status 1
/// and a line on standard error.
int ReadFmt(const char* path, LogDriver* set);

/// Reports "around %s: %s\n" with the current token and `message` as a counted error.
void config_yyerror(const char* message);

/// The value of a token: its text up to the first NUL. A text of more than 255 characters is
/// reported as too long and gives "???".
[[nodiscard]] std::string_view copyid(std::string_view text);

/// True for a "$" followed by nothing but decimal digits, or by nothing.
[[nodiscard]] bool isVar(std::string_view text);

namespace zem::format {

/// What the grammar knows about a symbol.
struct TokenValue {
  std::string_view text;         ///< of a token; a view into the file's text
  FormatSpec* parent = nullptr;  ///< of the FOLLOWS part
};

/// True place of the current token, for messages that point at it; `linenum` only counts newlines
/// consumed. Good during a read, and after one that a syntax error ended.
[[nodiscard]] TextPlace current_place();

}  // namespace zem::format

/// The grammar's two sides: the next token and its value, and the whole parse; 0 when it succeeded.
int config_yylex(zem::format::TokenValue* value);
int config_yyparse();
