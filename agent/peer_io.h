/// One connected socket, seen from our side: waiting for the peer, writing to it, and looking
/// whether it is still there. No wait is without end. Once a reload or clean-up is pending, all
/// waits for one event together have one more second: an event whose server answers promptly still
/// gets through whole, and a silent server holds nobody up.
#pragma once

#include <cstddef>
#include <span>

#include "util/clock.h"

namespace zem::agent {

/// What is left for all waits together from the moment a reload or clean-up is seen pending. Long
/// enough for any live peer, short enough that a reload happens while its user still looks on.
inline constexpr util::Milliseconds kGrace{1'000};

/// A new event, or a new handle, has the whole grace before it.
void renew_grace();

/// Waits until `fd` has one of `events` (poll(2) bits), an error or a hang-up: 0. Otherwise an
/// errno value: ETIMEDOUT after `limit`, EINTR when a pending reload or clean-up cut the wait
/// short, or why waiting failed.
[[nodiscard]] int await_peer(int fd, short events, util::Milliseconds limit);

/// Writes all of `bytes`, resuming after partial writes and signals; 0, or the errno value of what
/// went wrong. A peer that takes nothing for `stall_limit` ends it with ETIMEDOUT. Never raises
/// SIGPIPE, whatever mode the socket is in.
[[nodiscard]] int send_all(int fd, std::span<const std::byte> bytes,
                           util::Milliseconds stall_limit);

/// Looks, without waiting, whether the peer has closed or reset the connection. A closed connection
/// still takes one write without complaint, and what was written is lost: ask before writing.
[[nodiscard]] bool has_peer_closed(int fd);

/// has_peer_closed, after everything was thrown away that the peer has sent; one system call when
/// it has sent nothing.
[[nodiscard]] bool is_deserted(int fd);

/// Throws away what the peer has sent so far. A socket that is closed over unread bytes resets the
/// connection, and the reset may overtake what we wrote last.
void discard_input(int fd);

}  // namespace zem::agent
