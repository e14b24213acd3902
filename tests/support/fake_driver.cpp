#include "tests/support/fake_driver.h"

namespace zem::test {
namespace {

int call(const std::function<int()>& hook) { return hook ? hook() : 0; }

}  // namespace

FakeDriver& fake_driver() {
  static FakeDriver driver;
  return driver;
}

}  // namespace zem::test

using zem::test::fake_driver;

int ZEMAD_SpecDriverInit() { return zem::test::call(fake_driver().on_init); }

int ZEMAD_SpecDriverReload() { return zem::test::call(fake_driver().on_reload); }

int ZEMAD_SpecDriverCleanup() { return zem::test::call(fake_driver().on_cleanup); }

void ZEMAD_SpecGetReadFds(zem::util::FdSet* set) { set->clear_all(); }

int ZEMAD_SpecGetEvent() { return zem::test::call(fake_driver().on_get_event); }
