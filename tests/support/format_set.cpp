#include "tests/support/format_set.h"

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/format_report.h"

namespace zem::test {

FormatSet::FormatSet(std::string_view text, std::string_view unmatched_log_path) {
  if (!unmatched_log_path.empty()) openUnmatchLog(std::string(unmatched_log_path).c_str());
  status = 0;
  result_ = ReadFmt(dir_.write("formats", text).c_str(), this);
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
  const std::string path = dir_ / "cds";
  return write_cds(path.c_str()) == 1 ? read_file(path) : "";
}

std::string FormatSet::fmt_text() {
  const std::string path = dir_ / "fmt";
  return write_fmt(path.c_str()) == 1 ? read_file(path) : "";
}

}  // namespace zem::test
