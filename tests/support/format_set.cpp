#include "tests/support/format_set.h"

#include <sys/mman.h>

#include <fstream>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/format_report.h"
#include "tests/support/temp_dir.h"

namespace zem::test {

FormatSet::FormatSet(std::string_view text, std::string_view unmatched_log_path)
    : file_(::memfd_create("formats", MFD_CLOEXEC)) {
  if (!unmatched_log_path.empty()) openUnmatchLog(std::string(unmatched_log_path).c_str());
  std::ofstream(path(), std::ios::binary) << text;
  status = 0;
  result_ = ReadFmt(path().c_str(), this);
}

std::string FormatSet::names() const {
  std::string listed;
  for (const FormatSpec* spec : specs()) {
    if (!listed.empty()) listed += ' ';
    listed += spec->name();
  }
  return listed;
}

std::string FormatSet::cds() const {
  return write_cds(path().c_str()) == 1 ? read_file(path()) : "";
}

std::string FormatSet::fmt_text() {
  return write_fmt(path().c_str()) == 1 ? read_file(path()) : "";
}

std::string FormatSet::path() const { return "/proc/self/fd/" + std::to_string(file_.get()); }

}  // namespace zem::test
