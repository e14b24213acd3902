#include "tests/support/class_text.h"

#include <string>

#include "adapters/libzemad/class_writer.h"
#include "adapters/libzemad/parse.h"
#include "adapters/libzemad/parse_config.h"
#include "tests/support/log_capture.h"
#include "tests/support/text_source.h"
#include "util/expect.h"

namespace zem::test {

int parse_class_text(std::string_view text) {
  const TextSource source(text);
  return zemad_parse(TextSource::next, "test.cds");
}

ParsedClasses parse_classes(std::string_view text) {
  const LogCapture log(log::kParser);
  const int result = parse_class_text(text);
  ParsedClasses parsed{result, log.lines(), result == 0 ? kernel::class_file_text() : "",
                       SL_NbrElm(ZEMAD_ConstantList)};
  std::erase(parsed.messages, "");
  ZEMAD_KernelCleanup();
  return parsed;
}

ScopedClasses::ScopedClasses(std::string_view text) {
  const std::string lines = std::string(text) + "\n";  // an open last line would lose its last word
  util::expect(parse_class_text(lines) == 0, "the test's class text is accepted");
}

ScopedClasses::~ScopedClasses() { ZEMAD_KernelCleanup(); }

}  // namespace zem::test
