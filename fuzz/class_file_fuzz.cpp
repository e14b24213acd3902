/// Any bytes as a class definition file: the parser answers, nothing leaks, and what it accepts
/// reads back as the same classes.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/libzemad/class_writer.h"
#include "adapters/libzemad/parse.h"
#include "adapters/libzemad/parse_config.h"
#include "tests/support/text_source.h"
#include "util/expect.h"

namespace {

/// The compiled classes as text, or nothing when `text` was refused.
std::string compile(std::string_view text, bool& was_accepted) {
  const zem::test::TextSource source(text);
  was_accepted = zemad_parse(zem::test::TextSource::next, "fuzz") == 0;
  std::string written = was_accepted ? zem::kernel::class_file_text() : "";
  ZEMAD_KernelCleanup();
  return written;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  bool was_accepted = false;
  const std::string written = compile({reinterpret_cast<const char*>(bytes), size}, was_accepted);
  if (!was_accepted) return 0;
  const std::string again = compile(written, was_accepted);
  zem::util::expect(was_accepted && again == written, "accepted classes read back as themselves");
  return 0;
}
