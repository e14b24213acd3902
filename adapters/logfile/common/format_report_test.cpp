#include "adapters/logfile/common/format_report.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "tests/support/temp_dir.h"
#include "util/unique_fd.h"

namespace {

using zem::util::UniqueFd;

/// Standard output and error are files, apart from one that is a terminal; so while `speak` runs.
class FormatReport : public testing::Test {
 protected:
  FormatReport() : terminal_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    ::grantpt(terminal_.get());
    ::unlockpt(terminal_.get());
    linenum = 0;
    status = 0;
  }
  ~FormatReport() override { linenum = status = 0; }

  /// What is said on standard error when descriptor `on_terminal` is the terminal; -1: neither.
  std::string said(int on_terminal, const std::function<void()>& speak) {
    const UniqueFd file(::open((dir_ / "said").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600));
    const UniqueFd slave(::open(::ptsname(terminal_.get()), O_RDWR | O_NOCTTY));
    std::fflush(nullptr);
    const UniqueFd before[] = {UniqueFd(::dup(STDOUT_FILENO)), UniqueFd(::dup(STDERR_FILENO))};
    for (const int fd : {STDOUT_FILENO, STDERR_FILENO}) {
      ::dup2(fd == on_terminal ? slave.get() : file.get(), fd);
    }
    speak();
    std::fflush(nullptr);
    ::dup2(before[0].get(), STDOUT_FILENO);
    ::dup2(before[1].get(), STDERR_FILENO);
    char text[256] = {};
    if (on_terminal == STDERR_FILENO && ::read(terminal_.get(), text, sizeof text - 1) > 0)
      return text;
    return zem::test::read_file(dir_ / "said");
  }

 private:
  zem::test::TempDir dir_;
  UniqueFd terminal_;
};

TEST_F(FormatReport, SaysNothingWithoutATerminalButCounts) {
  EXPECT_EQ(said(-1,
                 [] {
                   logfile_warning(kReportPlain, "plain");
                   EXPECT_EQ(status, 0);
                   logfile_error(kReportCounted, "counted");
                 }),
            "");
  EXPECT_EQ(status, 1);
}

TEST_F(FormatReport, SpeaksOnStandardErrorWhenEitherStreamIsATerminal) {
  EXPECT_EQ(said(STDOUT_FILENO,
                 [] {
                   logfile_error(kReportPlain, "cannot open %s\n", "x.fmt");
                   linenum = 7;
                   logfile_error(kReportError, "%s `%s'", "bad", "%sx");
                   logfile_warning(kReportPlain, "unused");
                   logfile_warning(kReportLine, "%d%%", 5);
                 }),
            "error: cannot open x.fmt\n\n"
            "error at line 7: bad `%sx'\n"
            "warning: unused\n"
            "warning at line 7: 5%\n");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(said(STDERR_FILENO, [] { logfile_error(kReportPlain, "seen"); }), "error: seen\r\n");
}

}  // namespace
