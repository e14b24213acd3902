#include "agent/peer_io.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <thread>
#include <vector>

#include "util/signal_notes.h"
#include "util/unique_fd.h"

namespace zem::agent {
namespace {

using namespace std::chrono_literals;
using util::UniqueFd;

struct Pair {
  UniqueFd ours;
  UniqueFd theirs;
  Pair() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    ours = UniqueFd(ends[0]);
    theirs = UniqueFd(ends[1]);
  }
};

/// More than a socket's buffers hold.
std::vector<std::byte> large_message() { return std::vector<std::byte>(1 << 20, std::byte{'e'}); }

struct PendingNote {
  explicit PendingNote(util::Note note) : note_(note) {
    renew_grace();
    util::leave_note(note);
  }
  ~PendingNote() { util::take_note(note_); }
  util::Note note_;
};

TEST(PeerIo, SendsAllToASlowReader) {
  Pair pair;
  std::size_t received = 0;
  std::thread reader([&] {
    std::array<char, 1000> block{};
    ssize_t got = 0;
    while ((got = ::read(pair.theirs.get(), block.data(), block.size())) > 0) {
      received += static_cast<std::size_t>(got);
    }
  });
  EXPECT_EQ(send_all(pair.ours.get(), large_message(), 30s), 0);
  pair.ours.reset();
  reader.join();
  EXPECT_EQ(received, large_message().size());
}

TEST(PeerIo, GivesUpOnAPeerThatNeverReads) {
  Pair pair;
  EXPECT_EQ(send_all(pair.ours.get(), large_message(), 20ms), ETIMEDOUT);
}

TEST(PeerIo, SendingToAClosedPeerIsAnErrorAndNoSignal) {
  Pair pair;
  pair.theirs.reset();
  EXPECT_EQ(send_all(pair.ours.get(), large_message(), 30s), EPIPE);
}

class PeerIoWithNote : public testing::TestWithParam<util::Note> {};

TEST_P(PeerIoWithNote, APendingNoteLeavesAllWaitsTogetherOneSecond) {
  Pair pair;
  const PendingNote note(GetParam());
  const auto& clock = util::current<util::Clock>();
  const util::Milliseconds started = clock.now();
  for (int wait = 0; wait < 8; ++wait) {
    EXPECT_EQ(await_peer(pair.ours.get(), POLLIN, 30s), EINTR);
  }
  EXPECT_GE(clock.now() - started, kGrace);
  EXPECT_LT(clock.now() - started, 2 * kGrace);
}

TEST_P(PeerIoWithNote, APendingNoteDoesNotBreakWhatIsReady) {
  Pair pair;
  const PendingNote note(GetParam());
  EXPECT_EQ(await_peer(pair.ours.get(), POLLOUT, 30s), 0);
}

INSTANTIATE_TEST_SUITE_P(Notes, PeerIoWithNote,
                         testing::Values(util::Note::kReload, util::Note::kCleanup),
                         [](const auto& tested) {
                           return tested.param == util::Note::kReload ? "Reload" : "Cleanup";
                         });

TEST(PeerIo, SeesThatThePeerHasGoneThoughItLeftBytesBehind) {
  Pair pair;
  EXPECT_FALSE(has_peer_closed(pair.ours.get()));
  ASSERT_EQ(::write(pair.theirs.get(), "hello", 5), 5);
  EXPECT_FALSE(has_peer_closed(pair.ours.get()));
  pair.theirs.reset();
  EXPECT_TRUE(has_peer_closed(pair.ours.get()));
}

}  // namespace
}  // namespace zem::agent
