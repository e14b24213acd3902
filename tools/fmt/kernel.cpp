// The five functions that a source supplies are here: the tool's source has nothing to wait for,
// events are queued one by one by whoever has matched a message.
#include "tools/fmt/kernel.h"

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/zem_io.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/SysLogUtils.h"
#include "adapters/logfile/common/event_maker.h"
#include "tools/fmt/class_file.h"
#include "tools/fmt/command.h"
#include "tools/fmt/settings_file.h"
#include "util/resolver.h"
#include "util/seam.h"

int ZEMAD_SpecDriverInit() { return 0; }
int ZEMAD_SpecDriverReload() { return 0; }
int ZEMAD_SpecDriverCleanup() { return 0; }
void ZEMAD_SpecGetReadFds(zem::util::FdSet* set) { set->clear_all(); }
int ZEMAD_SpecGetEvent() { return 0; }

namespace zem::fmt {
namespace {

constexpr std::size_t kHostNameBytes = 64;

bool has_default_slot(const LogDriver& set) {
  for (const FormatSpec* spec : set.specs()) {
    for (const MsgMapEntry* slot : spec->slots()) {
      if (slot->kind() == kMapDefault) return true;
    }
  }
  return false;
}

}  // namespace

Kernel::Kernel(const std::string& class_path, const std::string& setting_path) {
  if (!setting_path.empty()) load_settings(setting_path);
  ZEMAD_DriverInit();
  ZEMAD_ZemIoInit();
  load_classes(class_path);
}

Kernel::~Kernel() {
  ZEMAD_KernelCleanup();
  ZEMAD_ZemIoCleanup();
  ZEMAD_DriverCleanup();
}

KernelEvent::KernelEvent(const FormatSpec& spec, int index, const format::LocalHost& host) {
  const bool is_current = event::queue_event(spec, index, host) == 0 && ZEMAD_GetNextEvent() == 0;
  if (!is_current) throw Failure(ExitStatus::kOutputError, "out of memory");
  class_name_ = ZEMAD_KernelSelect();
  if (class_name_ != nullptr && ZEMAD_FormatEvent(class_name_) == 0) text_ = ZEMAD_EventText();
}

KernelEvent::~KernelEvent() {
  ZEMAD_KernelSelectCleanup();
  ZEMAD_DiscardEvent();
}

ThisHost::ThisHost(const LogDriver& set) {
  if (!has_default_slot(set)) return;
  const auto name = util::current<util::Resolver>().local_host_name(kHostNameBytes);
  if (!name) throw Failure(ExitStatus::kNoInput, name.error().text());
  name_ = *name;
  address_ = SysLogUtils::IPaddr(name_.c_str());
}

}  // namespace zem::fmt
