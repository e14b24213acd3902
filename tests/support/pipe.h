/// A pipe, closed when it goes.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "util/expect.h"
#include "util/unique_fd.h"

namespace zem::test {

struct Pipe {
  explicit Pipe(int flags = O_CLOEXEC) {
    std::array<int, 2> ends{};
    util::expect(::pipe2(ends.data(), flags) == 0, "a pipe can be made");
    out = util::UniqueFd(ends[0]);
    in = util::UniqueFd(ends[1]);
  }
  void write(std::string_view bytes) const {
    const ssize_t written = ::write(in.get(), bytes.data(), bytes.size());
    util::expect(written == static_cast<ssize_t>(bytes.size()), "a pipe takes what it is given");
  }

  util::UniqueFd out;  ///< to read from
  util::UniqueFd in;   ///< to write to
};

}  // namespace zem::test
