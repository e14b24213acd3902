/// The socket level of the event client: one TCP connection and the framed message on it.
#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <memory>
#include <string_view>

#include "util/clock.h"
#include "util/heap.h"
#include "util/unique_fd.h"

/// One connection; holds no descriptor once it is closed.
struct eipc_handle {
  zem::util::UniqueFd socket;
  bool is_broken = false;  ///< a message has failed, perhaps half-way: nothing can follow it
};

/// Connects to address and port (network byte order); null on failure with `*err` 67 when the
/// server refused, else 38. Ends after 5 seconds at most.
eipc_handle* eipc_create_remote_client(in_addr_t address, in_port_t port, int* err);
/// Sends one framed message; 0, or -1 with `*err` 38. Nothing is sent for len < 1 (returns 0).
/// After a failure the message may have left in part: the connection is of no more use.
int eipc_send(eipc_handle* ipc, const char* data, int len, unsigned word2, unsigned word1,
              int* err);
/// Shuts both directions down; what was sent is still delivered.
void eipc_shutdown(eipc_handle* ipc);
/// Closes the socket and frees the handle; null is allowed.
void eipc_destroy_handle(eipc_handle* ipc);
/// SIGPIPE handler: installs itself again and does nothing else, so that writing to a closed
/// connection is an error and not the end of the process.
void catch_pipe(int signal);

namespace zem::agent {

inline constexpr int kServerUnreachable = 38;  ///< can not reach or talk to the server
inline constexpr int kHandleFailed = 48;       ///< no handle could be made
inline constexpr int kServerRefused = 67;      ///< the server refused the connection

/// A send that makes no progress for this long has failed. A server may pause to write what it got
/// (a slow disk, a full pipe); half a minute is beyond any healthy pause and still ends.
inline constexpr util::Milliseconds kSendStallLimit{30'000};

/// Offers messages, framed already and end to end, to the connection without waiting; the bytes
/// that it took, 0 when it takes none or fails.
[[nodiscard]] std::size_t offer_messages(eipc_handle& ipc, std::string_view bytes);
/// Sends `rest`, the end of a message the beginning of which the connection took; false when that
/// failed, and the connection is broken.
[[nodiscard]] bool finish_message(eipc_handle& ipc, std::string_view rest);

using ConnectionPtr = std::unique_ptr<eipc_handle, util::FreeWith<eipc_destroy_handle>>;

}  // namespace zem::agent
