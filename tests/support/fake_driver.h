/// A source that does what the test tells it: of the five functions of the driver contract all but
/// the one for descriptors are forwarded to a hook. Link zem_fake_driver.
#pragma once

#include <functional>

#include "adapters/libzemad/driver.h"

namespace zem::test {

/// The hooks of the one fake source. What is not set succeeds and does nothing; the set of
/// descriptors comes back empty. reset() between tests.
struct FakeDriver {
  std::function<int()> on_init;
  std::function<int()> on_reload;
  std::function<int()> on_cleanup;
  std::function<int()> on_get_event;

  void reset() { *this = FakeDriver(); }
};
FakeDriver& fake_driver();

}  // namespace zem::test
