// What a host can run short of while the daemon runs: disk, memory, a place for the cache.
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "tests/scenarios/scenario.h"

namespace zem::test {
namespace {

using testing::HasSubstr;

constexpr std::string_view kEvent = "Line;msg=two;END\n\x01";

/// No server: every event goes to the cache.
class Shortage : public Scenario {
 protected:
  void configure(const std::string& lines) {
    home_.rewrite(home_.conf_path(),
                  "ServerLocation=127.0.0.1\nServerPort=1\nRetryInterval=1\n" + lines);
  }

  /// No file can grow beyond `bytes`.
  void limit_files(rlim_t bytes) {
    const rlimit limit{bytes, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(daemon().pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
  }
  /// Leaves the daemon `bytes` more memory than it has.
  void limit_memory(rlim_t bytes) {
    std::ifstream statm("/proc/" + std::to_string(daemon().pid()) + "/statm");
    rlim_t pages = 0;
    statm >> pages;
    const rlimit limit{pages * static_cast<rlim_t>(::getpagesize()) + bytes, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(daemon().pid(), RLIMIT_AS, &limit, nullptr), 0);
  }
  [[nodiscard]] int cache_openings() {
    (void)daemon().is_alive();
    return count_of("Opening cache file", daemon().errors());
  }
};

TEST_F(Shortage, AFullDiskCostsTheEventAndNotTheDaemon) {
  configure("BufEvtPath=" + home_ / "cache" + "\n");
  start();
  limit_files(0);
  home_.log("one\n");
  // At the start, for the event, and for the next try to reach the server.
  ASSERT_TRUE(eventually([this] { return cache_openings() >= 3; }));
  limit_files(RLIM_INFINITY);
  home_.log("two\n");
  EXPECT_TRUE(is_traced("Event could not be sent properly"));
  EXPECT_EQ(read_file(home_ / "cache"), kEvent);
}

#ifndef __SANITIZE_ADDRESS__  // which ends the process by itself when memory is short

TEST_F(Shortage, NoMemoryForTheEventBufferEndsTheReload) {
  start();
  home_.rewrite(home_.conf_path(), "EventMaxSize=16777216\n" + read_file(home_.conf_path()));
  limit_memory(8 << 20);
  daemon().send(SIGHUP);
  EXPECT_EQ(daemon().end(), "exit 1");
  EXPECT_THAT(home_.trace(), HasSubstr("FATAL: ZEMIO  , err 01"));
  EXPECT_THAT(home_.trace(), HasSubstr("ZEMAD_ZemIoInit malloc failed"));
}

/// The slot still finds its six megabytes; the copy of the event, with its end, does not.
TEST_F(Shortage, NoMemoryForAnEventEndsTheDaemonWithAWord) {
  home_.configure("EventMaxSize=16777216");
  home_.rewrite(home_.cds_path(),
                "CLASS Large\n  SELECT\n    1: ATTR(=,\"msg\");\n"
                "  MAP\n    msg = PRINTF(\"%6000000s\", $V1);\nEND\n");
  start();
  limit_memory(8 << 20);
  home_.log("one\n");
  EXPECT_EQ(daemon().end(), "exit 1");
  EXPECT_THAT(daemon().errors(), HasSubstr("Memory allocation failure, exiting...\n"));
}

#endif

}  // namespace
}  // namespace zem::test
