#include "tests/support/class_text.h"

#include "adapters/libzemad/parse.h"
#include "adapters/libzemad/parse_config.h"
#include "util/expect.h"

namespace zem::test {
namespace {

std::string_view unread;

int next_byte() {
  if (unread.empty()) return -1;
  const auto byte = static_cast<unsigned char>(unread.front());
  unread.remove_prefix(1);
  return byte;
}

}  // namespace

int parse_class_text(std::string_view text) {
  unread = text;
  return zemad_parse(next_byte, "test.cds");
}

ScopedClasses::ScopedClasses(std::string_view text) {
  util::expect(parse_class_text(text) == 0, "the test's class text is accepted");
}

ScopedClasses::~ScopedClasses() { ZEMAD_KernelCleanup(); }

}  // namespace zem::test
