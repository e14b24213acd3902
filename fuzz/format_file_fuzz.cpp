// A format file of any bytes is read or refused, and what was read can be written: as class
// definitions, and as a format file that gives the same set again.
//
// The last holds only where the written text can hold the set. A comment between two pieces of a
// format line lets them run together, a NUL cuts a token short, and a constant takes two quotes
// that may put it over the limit of a token; such files are only read, written and read again.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/logfile/common/format_report.h"
#include "tests/support/format_set.h"
#include "util/expect.h"

namespace {

constexpr std::size_t kLineBytesMax = 250;

bool has_long_line(std::string_view text) {
  std::size_t length = 0;
  for (const char c : text) {
    length = c == '\n' ? 0 : length + 1;
    if (length > kLineBytesMax) return true;
  }
  return false;
}

bool can_be_written(std::string_view text) {
  const bool has_comment = text.find("/*") != text.npos || text.find("//") != text.npos;
  return !has_comment && text.find('\0') == text.npos && !has_long_line(text);
}

void check_round_trip(zem::test::FormatSet& set, std::string_view text) {
  const std::string written = set.fmt_text();
  zem::test::FormatSet again(written);
  const bool mappable = set.unresolvedSlot() == nullptr;
  const std::string classes = mappable ? set.cds() : "";
  if (set.result() != 0 || !can_be_written(text)) return;
  zem::util::expect(again.result() == 0, "a written format file is accepted");
  zem::util::expect(again.fmt_text() == written, "a written format file gives the same again");
  if (mappable) {
    zem::util::expect(again.cds() == classes, "a written format file gives the same classes");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  zem::test::FormatSet set(text);
  check_round_trip(set, text);
  set.orderFmts();
  return 0;
}
