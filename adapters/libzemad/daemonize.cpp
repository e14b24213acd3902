#include "adapters/libzemad/daemonize.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <initializer_list>

namespace zem::frame {
namespace {

constexpr int kFirstInherited = 3;
constexpr int kLastInherited = 127;

/// open(2) takes the lowest free number: the callers see to it that this is the one they mean.
void open_null_device() {
  (void)::open("/dev/null", O_RDWR);  // NOLINT(android-cloexec-open): a standard stream
}

/// Whoever started the daemon sees end of file on its pipes.
void drop_standard_streams() {
  for (const int fd : {STDERR_FILENO, STDOUT_FILENO, STDIN_FILENO}) ::close(fd);
  fill_standard_descriptors();
}

}  // namespace

void fill_standard_descriptors() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(fd, F_GETFD) == -1) open_null_device();
  }
}

void close_inherited_descriptors() {
  for (int fd = kFirstInherited; fd <= kLastInherited; ++fd) ::close(fd);
}

void go_into_background() {
  // The parent leaves without the library's own clean-up: a banner that is still buffered would be
  // lost there and written by the child into whatever holds its descriptor 1.
  std::fflush(stdout);
  std::fflush(stderr);
  if (::fork() != 0) ::_exit(0);
  drop_standard_streams();
}

}  // namespace zem::frame
