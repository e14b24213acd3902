#include "bench/road/results.h"

#include <gtest/gtest.h>

#include <sstream>

#include "bench/road/tables.h"

namespace zem::bench {
namespace {

Results results_of(const char* lines) {
  std::istringstream stream(lines);
  return Results(stream);
}

TEST(BenchResults, MedianAndSpreadOfEachSize) {
  const Results results = results_of(
      "tcp,10,us,3\ntcp,10,us,1\ntcp,10,us,2\n"
      "tcp,100,us,4\ntcp,100,us,1\nsend,10,us,8\n");
  EXPECT_EQ(results.sizes(), (std::vector<int>{10, 100}));
  const Figure odd = results.figure("tcp", 10, "us").value();
  EXPECT_EQ(odd.median, 2);
  EXPECT_EQ(odd.least, 1);
  EXPECT_EQ(odd.most, 3);
  EXPECT_EQ(results.figure("tcp", 100, "us").value().median, 2.5);
  EXPECT_EQ(results.ratio("send", "tcp", 10), 4);
  EXPECT_EQ(results.ratio("send", "tcp", 100), std::nullopt);
}

TEST(BenchResults, ALineThatIsNoResult) {
  EXPECT_THROW(results_of("tcp,10,us,1\nmeasure: 5 events are missing\n"), std::runtime_error);
}

TEST(BenchVerdicts, BoundsFromAboveAndFromBelow) {
  const Results results = results_of(
      "match,10,us,0.06\nmatch,10000,us,0.20\ntcp,100,us,0.9\ntcp,10000,us,1.4\n"
      "tcp,10000,rss_mib,12\nrsyslog,100,us,2.6\nsyslog-ng,100,us,9\n");
  EXPECT_EQ(verdict_table(results),
            "| figure | must | aim | measured | |\n|---|---|---|---|---|\n"
            "| matching, us, 10 FORMATs | 0.150 | 0.070 | 0.060 | aim reached |\n"
            "| matching, us, 10000 FORMATs | 0.350 | 0.120 | 0.200 | holds |\n"
            "| FIFO to TCP, us, 100 FORMATs | 1.00 | 0.280 | 0.900 | holds |\n"
            "| FIFO to TCP, us, 10000 FORMATs | 1.30 | 0.380 | 1.40 | MISSED |\n"
            "| resident memory, MiB, 10000 FORMATs | 40.0 | 12.0 | 12.0 | aim reached |\n"
            "| matching, 10,000 FORMATs against 10 | 3.00 | 1.50 | 3.33 | MISSED |\n"
            "| times as fast as rsyslog, FIFO to TCP, 100 FORMATs | 3.00 | 10.0 | 2.89 | MISSED |\n"
            "| times as fast as syslog-ng, FIFO to TCP, 100 FORMATs | 3.00 | 10.0 | 10.0 | aim "
            "reached |\n");
}

}  // namespace
}  // namespace zem::bench
