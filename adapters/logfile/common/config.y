/* The grammar of the format file. Each rule builds its part of an entry as soon as it is complete
 * (format_builder.h); there is no syntax tree.
 *
 * What a token is depends on `offset`, so it matters which actions run before the next token is
 * read. Where a state has nothing but one reduction the parser reduces without looking ahead:
 *
 *   - `offset` is 1 before the name behind FORMAT is read, and 0 before the token behind END and
 *     its newline.
 *   - An unknown parent is reported, and the entry is in the set, before the line's newline is read.
 *
 * Where the next token could also be shifted it is read first, and any token that does not fit
 * reduces all the same, before it is refused:
 *
 *   - An entry without parent is in the set although its FORMAT line goes wrong behind the name.
 *   - The parent's slots are inherited although the file ends within the format line.
 *
 * So default reductions must stay on, and `lr.type` lalr. All lists are left-recursive: the
 * parser's stack holds a dozen values however long the file is. */

%require "3.8"
%define api.prefix {config_yy}
%define api.pure full
%define api.value.type {zem::format::TokenValue}

%code {
#include "adapters/logfile/common/format_builder.h"
#include "adapters/logfile/common/format_scanner.h"

using namespace zem::format;
}

%code requires {
#include "adapters/logfile/common/format_reader.h"
}

%token <text> WORD 257 SPEC 258 BLANK 259 QSTRING 260
%token NEWLINE 261 FORMAT 262 END 263 FOLLOWS 264 PRINTF 265 DEFAULT 266
%type <parent> follows

%%

file
  : %empty
  | file entry
  ;

entry
  : FORMAT                    { offset = EntryOffset::kFormatNameLine; }
    WORD[name] follows[parent] { begin_entry($name); }
    NEWLINE
    pieces                    { end_format_line($parent); }
    NEWLINE
    slots
    END NEWLINE               { offset = EntryOffset::kBetweenEntries; }
  ;

follows
  : %empty                    { $$ = nullptr; }
  | FOLLOWS WORD              { $$ = parent_named($WORD); }
  ;

pieces
  : piece
  | pieces piece
  ;

piece
  : WORD                      { add_word($WORD); }
  | SPEC                      { add_piece($SPEC); }
  | BLANK                     { add_piece($BLANK); }
  ;

slots
  : %empty
  | slots slot
  ;

slot
  : WORD[name] WORD[value] NEWLINE { add_word_slot($name, $value); }
  | WORD QSTRING NEWLINE      { add_constant_slot($WORD, $QSTRING); }
  | WORD DEFAULT NEWLINE      { add_default_slot($WORD); }
  | WORD                      { begin_print_slot($WORD); }
    PRINTF '(' QSTRING        { add_print_rule($QSTRING); }
    arguments ')' NEWLINE     { add_print_slot(); }
  ;

arguments
  : %empty
  | arguments ',' WORD        { add_print_rule($WORD); }
  ;

%%

static_assert(WORD == int{kWord} && SPEC == int{kSpec} && BLANK == int{kBlank});
static_assert(QSTRING == int{kQuoted} && NEWLINE == int{kNewline} && FORMAT == int{kFormat});
static_assert(END == int{kEnd} && FOLLOWS == int{kFollows} && PRINTF == int{kPrintf});
static_assert(DEFAULT == int{kDefault});
