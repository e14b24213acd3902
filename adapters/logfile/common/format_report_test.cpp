#include "adapters/logfile/common/format_report.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/temp_dir.h"
#include "util/unique_fd.h"

namespace {

using zem::util::UniqueFd;

/// Descriptor `number` is `fd` while the object lives.
class ScopedDescriptor {
 public:
  ScopedDescriptor(int number, int fd) : number_(number), previous_(::dup(number)) {
    std::fflush(nullptr);
    ::dup2(fd, number);
  }
  ScopedDescriptor(const ScopedDescriptor&) = delete;
  ScopedDescriptor& operator=(const ScopedDescriptor&) = delete;
  ~ScopedDescriptor() {
    std::fflush(nullptr);
    ::dup2(previous_.get(), number_);
  }

 private:
  int number_;
  UniqueFd previous_;
};

/// Standard output and error are files below `dir`, apart from those that are a terminal.
class Streams {
 public:
  explicit Streams(const zem::test::TempDir& dir)
      : out_file_(::open((dir / "out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)),
        err_file_(::open((dir / "err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)),
        out_(STDOUT_FILENO, out_file_.get()),
        err_(STDERR_FILENO, err_file_.get()) {}

 private:
  UniqueFd out_file_;
  UniqueFd err_file_;
  ScopedDescriptor out_;
  ScopedDescriptor err_;
};

class FormatReport : public testing::Test {
 protected:
  FormatReport() : terminal_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    ::grantpt(terminal_.get());
    ::unlockpt(terminal_.get());
    slave_ = UniqueFd(::open(::ptsname(terminal_.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    linenum = 0;
    status = 0;
  }
  ~FormatReport() override { linenum = status = 0; }

  zem::test::TempDir dir_;
  UniqueFd terminal_;
  UniqueFd slave_;
};

TEST_F(FormatReport, SaysNothingWithoutATerminalButCounts) {
  {
    const Streams files(dir_);
    logfile_warning(kReportPlain, "plain");
    EXPECT_EQ(status, 0);
    logfile_error(kReportCounted, "counted");
  }
  EXPECT_EQ(status, 1);
  EXPECT_EQ(zem::test::read_file(dir_ / "err"), "");
  EXPECT_EQ(zem::test::read_file(dir_ / "out"), "");
}

TEST_F(FormatReport, SpeaksOnStandardErrorWhenEitherStreamIsATerminal) {
  {
    const Streams files(dir_);
    const ScopedDescriptor terminal(STDOUT_FILENO, slave_.get());
    logfile_error(kReportPlain, "cannot open %s\n", "x.fmt");
    linenum = 7;
    logfile_error(kReportError, "%s `%s'", "bad", "%sx");
    logfile_warning(kReportPlain, "unused");
    logfile_warning(kReportLine, "%d%%", 5);
  }
  EXPECT_EQ(status, 1);
  EXPECT_EQ(zem::test::read_file(dir_ / "err"),
            "error: cannot open x.fmt\n\n"
            "error at line 7: bad `%sx'\n"
            "warning: unused\n"
            "warning at line 7: 5%\n");
}

TEST_F(FormatReport, ATerminalOnStandardErrorIsEnough) {
  {
    const Streams files(dir_);
    const ScopedDescriptor terminal(STDERR_FILENO, slave_.get());
    logfile_error(kReportPlain, "seen");
  }
  char seen[64] = {};
  const ssize_t bytes = ::read(terminal_.get(), seen, sizeof seen);
  EXPECT_EQ(std::string(seen, bytes < 0 ? 0 : static_cast<std::size_t>(bytes)), "error: seen\r\n");
}

}  // namespace
