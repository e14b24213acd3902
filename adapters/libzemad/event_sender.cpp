#include "adapters/libzemad/event_sender.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/zem_io.h"
#include "agent/agent_comm.h"
#include "util/heap.h"

namespace zem::frame {
namespace {

constexpr log::Source kSource{log::kZemIo, "zem_io"};
constexpr int kModeFromConfiguration = 2;

using HandlePtr = std::unique_ptr<zem_handle, util::FreeWith<zem_destroy_handle>>;

/// Made at first use, so that it goes before anything that its release needs.
HandlePtr& client_handle() {
  static HandlePtr handle;
  return handle;
}

[[noreturn]] void give_up(const char* text) {
  log::report(kSource, log::kFatal, 1, text);
  std::exit(1);
}

zem_handle* open_handle() {
  HandlePtr& handle = client_handle();
  if (!handle) handle.reset(zem_create_handle(nullptr, 0, 0, kModeFromConfiguration));
  if (!handle) give_up("Cannot create OBX handle. Please check the .conf file.");
  return handle.get();
}

void copy_to_log(const std::string& text) {
  std::FILE* log = ZEMAD_ErrorStart(kSource.module, log::kNormal);
  if (log == nullptr) return;
  std::fprintf(log, "\n%s\n", text.c_str());
  ZEMAD_ErrorEnd(log);
}

}  // namespace

bool send_event_text(const std::string& text) {
  const int accepted = zem_agent_send(text.c_str());
  copy_to_log(text);
  if (accepted == static_cast<int>(text.size())) return true;
  log::report(kSource, log::kMajor, 1, "Event could not be sent properly");
  return false;
}

}  // namespace zem::frame

int zem_agent_send(const char* text) { return zem_put_event(zem::frame::open_handle(), text); }

void zem_agent_cleanup() { zem::frame::client_handle().reset(); }
