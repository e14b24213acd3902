/// The three ways between the generated parser and our own code: where it starts, where it gets
/// its tokens, and where it complains.
#include "adapters/libzemad/parse.h"

#include <string_view>

#include "adapters/libzemad/class_builder.h"
#include "adapters/libzemad/class_scanner.h"

using zem::kernel::ClassBuilder;
using zem::kernel::ClassScanner;

int zemad_yylex(ZEMAD_YYSTYPE* value, ClassScanner& scan, ClassBuilder& /*build*/) {
  const int token = scan.yylex();
  value->number = scan.number();
  return token;
}

/// The generator's own words for a full stack are not ours. A syntax error may come in the middle
/// of a PRINTF: recovery needs the reserved words back.
void zemad_yyerror(ClassScanner& scan, ClassBuilder& build, const char* message) {
  scan.switch_reserved_words(true);
  build.yyerror(std::string_view(message) == "memory exhausted" ? "yacc stack overflow" : message);
}

namespace {

int parse(ClassScanner& scan, const char* file_name) {
  ClassBuilder build(scan, file_name);
  const int aborted = zemad_yyparse(scan, build) == 0 ? 0 : 1;
  zem::kernel::forget_constant_index();
  return build.parse_errors() + aborted;
}

}  // namespace

int zemad_parse(ZEMAD_GetRoutineChar get_routine, const char* file_name) {
  ClassScanner scan(get_routine);
  return parse(scan, file_name);
}

int zemad_parse(std::string_view text, const char* file_name) {
  ClassScanner scan(text);
  return parse(scan, file_name);
}
