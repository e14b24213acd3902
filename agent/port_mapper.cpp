/// One question, GETPORT of port mapper version 2, over a TCP connection of its own. The RPC client
/// library makes the question and reads the answer: its message codecs work on its record stream,
/// and the stream's two ends are ours. So the waits are ours as well: its ready-made call starts
/// its time-out anew with every piece of an answer and after every signal, so that a mapper that
/// answers byte by byte would hold an event up for minutes.

#include "agent/port_mapper.h"

#include <poll.h>
#include <rpc/clnt.h>
#include <rpc/pmap_prot.h>
#include <rpc/rpc.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "agent/connector.h"
#include "agent/peer_io.h"

namespace zem::agent {
namespace {

using util::Clock;
using util::Milliseconds;

constexpr unsigned kQuestionId = 1;  // the only question on its connection

/// The socket below the record stream, and the moment at which all must be over.
struct Conversation {
  int fd;
  Milliseconds ends;

  [[nodiscard]] Milliseconds left() const {
    return std::max(ends - util::current<Clock>().now(), Milliseconds{0});
  }
};

extern "C" int write_question(void* conversation, void* bytes, int size) {
  const auto& to = *static_cast<Conversation*>(conversation);
  const std::span all(static_cast<const std::byte*>(bytes), static_cast<std::size_t>(size));
  return send_all(to.fd, all, to.left()) == 0 ? size : -1;
}

/// At least one byte, or -1 at the end of the stream, of the time, or of the world.
extern "C" int read_answer(void* conversation, void* room, int size) {
  const auto& from = *static_cast<Conversation*>(conversation);
  while (true) {
    if (from.left() == Milliseconds{0} || await_peer(from.fd, POLLIN, from.left()) != 0) return -1;
    const ssize_t got = ::recv(from.fd, room, static_cast<std::size_t>(size), MSG_DONTWAIT);
    if (got > 0) return static_cast<int>(got);
    if (got == 0 || (errno != EINTR && errno != EAGAIN)) return -1;
  }
}

/// The record stream of one conversation.
class RecordStream {
 public:
  explicit RecordStream(Conversation& conversation) {
    constexpr unsigned kBufferBytes = 512;  // a question has 60 bytes, an answer 32
    ::xdrrec_create(&xdr_, kBufferBytes, kBufferBytes, &conversation, read_answer, write_question);
  }
  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;
  ~RecordStream() { XDR_DESTROY(&xdr_); }

  bool ask(pmap& wanted) {
    rpc_msg call{};
    call.rm_xid = kQuestionId;
    call.rm_direction = CALL;
    call.rm_call.cb_rpcvers = RPC_MSG_VERSION;
    call.rm_call.cb_prog = PMAPPROG;
    call.rm_call.cb_vers = PMAPVERS;
    call.rm_call.cb_proc = PMAPPROC_GETPORT;
    xdr_.x_op = XDR_ENCODE;
    return ::xdr_callmsg(&xdr_, &call) == TRUE && ::xdr_pmap(&xdr_, &wanted) == TRUE &&
           ::xdrrec_endofrecord(&xdr_, TRUE) == TRUE;
  }

  /// The port in host byte order; 0 for every other answer and for none.
  unsigned answer() {
    std::array<char, MAX_AUTH_BYTES> verifier{};
    unsigned port = 0;
    rpc_msg reply{};
    reply.acpted_rply.ar_verf.oa_base = verifier.data();
    reply.acpted_rply.ar_results.where = reinterpret_cast<caddr_t>(&port);
    reply.acpted_rply.ar_results.proc = reinterpret_cast<xdrproc_t>(::xdr_u_int);
    xdr_.x_op = XDR_DECODE;
    const bool read = ::xdrrec_skiprecord(&xdr_) == TRUE && ::xdr_replymsg(&xdr_, &reply) == TRUE;
    const bool granted = read && reply.rm_xid == kQuestionId &&
                         reply.rm_reply.rp_stat == MSG_ACCEPTED &&
                         reply.acpted_rply.ar_stat == SUCCESS;
    return granted ? port : 0;
  }

 private:
  XDR xdr_{};
};

class SystemPortMapper final : public PortMapper {
 public:
  in_port_t port_of(in_addr_t address, unsigned program, unsigned version) override {
    const Milliseconds ends = util::current<Clock>().now() + kPortLookupLimit;
    const auto socket =
        util::current<Connector>().connect(address, htons(PMAPPORT), kPortLookupLimit);
    if (!socket.has_value()) return 0;
    Conversation conversation{(*socket).get(), ends};
    RecordStream stream(conversation);
    pmap wanted{program, version, IPPROTO_TCP, 0};
    if (!stream.ask(wanted)) return 0;
    const unsigned port = stream.answer();
    return port > 0xFFFF ? 0 : htons(static_cast<in_port_t>(port));
  }
};

}  // namespace
}  // namespace zem::agent

namespace zem::util {

template <>
agent::PortMapper& system_implementation<agent::PortMapper>() {
  static agent::SystemPortMapper mapper;
  return mapper;
}

}  // namespace zem::util
