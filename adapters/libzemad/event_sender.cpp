#include "adapters/libzemad/event_sender.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/main_loop.h"
#include "adapters/libzemad/zem_io.h"
#include "agent/agent_comm.h"
#include "agent/gathering.h"
#include "util/heap.h"
#include "util/signal_notes.h"

namespace zem::frame {
namespace {

constexpr log::Source kSender{log::kZemIo, "zem_io"};
constexpr int kModeFromConfiguration = 2;

using HandlePtr = std::unique_ptr<zem_handle, util::FreeWith<zem_destroy_handle>>;

/// The way out: where events are posted, and what is on its way there.
struct Exit {
  HandlePtr handle;
  agent::Gathering gathering;
  bool is_gathering = false;
};

/// Made at first use, so that it goes before anything that its release needs.
Exit& way_out() {
  static Exit exit;
  return exit;
}

[[noreturn]] void give_up(const char* text) {
  log::report(kSender, log::kFatal, 1, text);
  std::exit(1);
}

zem_handle& open_handle() {
  HandlePtr& handle = way_out().handle;
  if (!handle) handle.reset(zem_create_handle(nullptr, 0, 0, kModeFromConfiguration));
  if (!handle) give_up("Cannot create OBX handle. Please check the .conf file.");
  return *handle;
}

void copy_to_log(const std::string& text) {
  std::FILE* log = ZEMAD_ErrorStart(kSender.module, log::kNormal);
  if (log == nullptr) return;
  std::fprintf(log, "\n%s\n", text.c_str());
  ZEMAD_ErrorEnd(log);
}

void report_unsent() { log::report(kSender, log::kMajor, 1, "Event could not be sent properly"); }

bool may_gather() { return way_out().is_gathering && !log::is_traced(); }

/// What may become of a gathered event must not be reported behind what is reported of later ones.
agent::Gathered gather(std::string_view text) {
  const agent::Gathered gathered = agent::gather(open_handle(), way_out().gathering, text);
  if (gathered == agent::Gathered::kYes) log::before_next_message(send_gathered);
  return gathered;
}

agent::Gathered gather_making_room(std::string_view text) {
  if (!may_gather()) return agent::Gathered::kNotNow;
  const agent::Gathered gathered = gather(text);
  if (gathered != agent::Gathered::kNotNow || way_out().gathering.empty()) return gathered;
  send_gathered();
  return gather(text);
}

void try_empty_event() {
  if (ZEMAD_no_connection != 0) zem_put_event(&open_handle(), "");
}

bool send_directly(const std::string& text) {
  const int accepted = zem_agent_send(text.c_str());
  copy_to_log(text);
  return accepted == static_cast<int>(text.size());
}

}  // namespace

bool send_event_text(std::string_view text) {
  const agent::Gathered gathered = gather_making_room(text);
  const bool is_well = gathered == agent::Gathered::kYes ||
                       (gathered == agent::Gathered::kNotNow && send_directly(std::string(text)));
  if (!is_well) report_unsent();
  return is_well;
}

GatheringScope::GatheringScope() { way_out().is_gathering = true; }

GatheringScope::~GatheringScope() { way_out().is_gathering = false; }

void send_gathered() {
  Exit& exit = way_out();
  if (exit.gathering.empty()) return;
  log::before_next_message(nullptr);
  agent::post_gathered(*exit.handle, exit.gathering, [](const agent::PostedAlone& event) {
    if (!event.was_accepted) {
      report_unsent();
      log::report(kSource, log::kMinor, 1, "SendEvent error");
    }
    for (int pass = 0; pass < event.passes && !util::is_wait_unwelcome(); ++pass) {
      try_empty_event();
    }
  });
}

void retry_connection() {
  Exit& exit = way_out();
  if (!exit.gathering.empty()) return exit.gathering.note_pass();
  // A clean-up that is due would be kept waiting by one more round of connection attempts.
  if (!util::is_noted(util::Note::kCleanup)) try_empty_event();
}

}  // namespace zem::frame

void ZEMAD_AboutToWait() { zem::frame::send_gathered(); }

int zem_agent_send(const char* text) {
  zem::frame::send_gathered();
  return zem_put_event(&zem::frame::open_handle(), text);
}

void zem_agent_cleanup() {
  zem::frame::send_gathered();
  zem::frame::way_out().handle.reset();
}
