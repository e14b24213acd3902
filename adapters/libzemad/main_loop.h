/// The main loop, step by step: what the notes of the signals ask for first, then one wait, one
/// look at the source, and every event that came of it. Callers in tests run single passes.
#pragma once

#include "adapters/libzemad/error.h"
#include "util/fd_set.h"

namespace zem::frame {

/// The frame's voice in the log.
inline constexpr log::Source kSource{log::kKernel, "main"};

/// Carries out a noted clean-up or else a noted reload; false once the daemon is cleaned up.
bool heed_notes();
/// Waits for the source, gets its events and processes them all.
void run_pass(util::FdSet& set);

/// Reads the configuration, the log's, the kernel's, the driver's and the output side's part again.
/// Only a sender configuration that can not be read ends the process.
void reload();
/// Releases the client's handle, the driver and the output side. May run again.
void clean_up();

}  // namespace zem::frame
