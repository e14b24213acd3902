#include "tools/fmt/format_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/format_report.h"
#include "tools/fmt/command.h"
#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::fmt {
namespace {

std::vector<EngineReport>& collected() {
  static std::vector<EngineReport> reports;
  return reports;
}

void collect(bool is_error, int flags, const char* format, va_list args) {
  if ((flags & kReportCounted) != 0) status = 1;
  char* text = nullptr;
  if (::vasprintf(&text, format, args) < 0) return;
  const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
  EngineReport report{is_error, (flags & kReportLine) != 0, linenum, text};
  while (report.text.ends_with('\n')) report.text.pop_back();
  collected().push_back(std::move(report));
}

[[gnu::format(printf, 2, 3)]] void collect_error(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  collect(true, flags, format, args);
  va_end(args);
}

[[gnu::format(printf, 2, 3)]] void collect_warning(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  collect(false, flags, format, args);
  va_end(args);
}

[[noreturn]] void fail_to_read(const std::string& path, int code) {
  throw Failure(ExitStatus::kNoInput, util::Error{"open", path, code}.text());
}

}  // namespace

std::string EngineReport::rendered() const {
  const std::string kind = is_error ? "error" : "warning";
  return kind + (has_line ? " at line " + std::to_string(line) : "") + ": " + text;
}

std::string FormatReading::rendered() const {
  std::string text;
  for (const EngineReport& report : reports) text += report.rendered() + "\n";
  return text;
}

ReportCollector::ReportCollector() {
  collected().clear();
  efcn = collect_error;
  wfcn = collect_warning;
}

ReportCollector::~ReportCollector() {
  efcn = logfile_error;
  wfcn = logfile_warning;
}

std::vector<EngineReport> ReportCollector::take() { return std::exchange(collected(), {}); }

void require_readable(const std::string& path) {
  const util::UniqueFd fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!fd.is_open()) fail_to_read(path, errno);
  struct stat file {};
  if (::fstat(fd.get(), &file) == -1) fail_to_read(path, errno);
  if (S_ISDIR(file.st_mode)) fail_to_read(path, EISDIR);
}

FormatReading read_formats(const std::string& path, LogDriver& set) {
  require_readable(path);
  ReportCollector collector;
  status = 0;
  const bool is_accepted = ReadFmt(path.c_str(), &set) == 0;
  return {is_accepted, collector.take()};
}

void load_formats(const std::string& path, LogDriver& set) {
  const FormatReading reading = read_formats(path, set);
  if (reading.is_accepted) return;
  std::string text = path + ": the format file can not be used (\"zemad_fmt check FMT\" says more)";
  for (const EngineReport& report : reading.reports) {
    if (report.is_error) text.append("\n").append(report.rendered());
  }
  throw Failure(ExitStatus::kBadData, text);
}

void order_formats(LogDriver& set) {
  const ReportCollector collector;
  set.orderFmts();
}

}  // namespace zem::fmt
