// `match` reads input of any size in constant memory.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/support/daemon_process.h"
#include "tests/support/exec_pointers.h"
#include "tools/fmt/test_file.h"
#include "util/unique_fd.h"

namespace zem::test {
namespace {

const std::string kEtc = ZEM_SOURCE_DIR "/etc/zemad_logfile";
constexpr long kMemoryKilobytesMax = 32L * 1024;

struct Usage {
  std::string end;
  long memory_kilobytes;
};

/// The child's side: `input` on standard input, the output thrown away.
[[noreturn]] void become(std::vector<std::string> arguments, int input) {
  arguments.insert(arguments.begin(), ZEM_FMT_TOOL);
  const int output = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (::dup2(input, STDIN_FILENO) != -1 && ::dup2(output, STDOUT_FILENO) != -1 &&
      ::dup2(output, STDERR_FILENO) != -1) {
    ::execv(ZEM_FMT_TOOL, pointers_to(arguments).data());
  }
  ::_exit(126);
}

/// `piece` again and again; stops early when nobody reads any more.
void pour(int fd, const std::string& piece, std::size_t bytes) {
  for (std::size_t done = 0; done < bytes; done += piece.size()) {
    std::size_t at = 0;
    while (at < piece.size()) {
      const ssize_t count = ::write(fd, piece.data() + at, piece.size() - at);
      if (count <= 0) return;
      at += static_cast<std::size_t>(count);
    }
  }
}

Usage match(std::vector<std::string> arguments, const std::string& piece, std::size_t bytes) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  util::UniqueFd reader(ends[0]);
  util::UniqueFd writer(ends[1]);
  const pid_t pid = ::fork();
  if (pid == 0) become(std::move(arguments), reader.get());
  reader.reset();
  pour(writer.get(), piece, bytes);
  writer.reset();
  int wait_status = 0;
  rusage usage{};
  EXPECT_EQ(::wait4(pid, &wait_status, 0, &usage), pid);
  return {describe_end(wait_status), usage.ru_maxrss};
}

/// The messages of the shipped tests.
std::string shipped_log() {
  std::string log;
  for (const auto& part : fmt::read_test_file(kEtc + ".test").parts) {
    log += part.test.message + "\n";
  }
  return log;
}

class MatchMemory : public testing::Test {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's own memory counts";
#endif
    (void)std::signal(SIGPIPE, SIG_IGN);  // a child that fails shows in its exit status
  }
  void TearDown() override { (void)std::signal(SIGPIPE, SIG_DFL); }
};

TEST_F(MatchMemory, StaysTheSameFor100Megabytes) {
  const Usage usage =
      match({"match", kEtc + ".fmt", "--format", "json", "--stats", "--unmatched", "/dev/null"},
            shipped_log(), 100'000'000);
  EXPECT_EQ(usage.end, "exit 1");
  EXPECT_LT(usage.memory_kilobytes, kMemoryKilobytesMax);
}

TEST_F(MatchMemory, StaysTheSameForClasses) {
  const Usage usage =
      match({"match", kEtc + ".fmt", "--cds", kEtc + ".cds", "--stats", "--format", "event"},
            shipped_log(), 2'000'000);
  EXPECT_EQ(usage.end, "exit 1");
  EXPECT_LT(usage.memory_kilobytes, kMemoryKilobytesMax);
}

TEST_F(MatchMemory, StaysTheSameForALineWithoutEnd) {
  const Usage usage = match({"match", kEtc + ".fmt"}, std::string(65'536, 'x'), 100'000'000);
  EXPECT_EQ(usage.end, "exit 1");
  EXPECT_LT(usage.memory_kilobytes, kMemoryKilobytesMax);
}

}  // namespace
}  // namespace zem::test
