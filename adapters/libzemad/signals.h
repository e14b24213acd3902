/// The signals of the daemon. A handler only leaves a note (util/signal_notes.h); what the note
/// asks for is done by the main loop at the top of its next pass, and every long wait ends for it.
#pragma once

namespace zem::frame {

enum class Delivery {
  kOnce,   ///< the signal's default action is back once it has been delivered
  kAlways  ///< the handler stays
};

/// Installs a handler that interrupts system calls. The signal is opened, should the parent process
/// have left it blocked.
[[nodiscard]] bool install_handler(int signal, void (*handler)(int), Delivery delivery);

/// A file that has reached the limit of its size (ulimit -f) counts as one on a full disk: what can
/// not be written is an error, and not the end of the process.
void ignore_file_size_limit();

}  // namespace zem::frame
