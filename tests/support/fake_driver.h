/// A source that does what the test tells it: the five functions of the driver contract, each
/// forwarded to a hook. Link zem_fake_driver.
#pragma once

#include <functional>

#include "adapters/libzemad/driver.h"

namespace zem::test {

/// The hooks of the one fake source. What is not set succeeds and does nothing; without a hook for
/// the descriptors the set comes back empty. reset() between tests.
struct FakeDriver {
  std::function<int()> on_init;
  std::function<int()> on_reload;
  std::function<int()> on_cleanup;
  std::function<void(util::FdSet&)> on_read_fds;  ///< gets the set cleared
  std::function<int()> on_get_event;

  void reset() { *this = FakeDriver(); }
};
FakeDriver& fake_driver();

}  // namespace zem::test
