#include "bench/road/verdicts.h"

#include <optional>

#include "util/text.h"

namespace zem::bench {

namespace {

/// A figure that must not be above a bound.
struct Limit {
  const char* subject;
  const char* road;
  const char* metric;
  int formats;
  double must;
  double aim;
};

constexpr Limit kLimits[] = {
    {"matching, us", "match", "us", 10, 0.15, 0.07},
    {"matching, us", "match", "us", 100, 0.20, 0.09},
    {"matching, us", "match", "us", 1000, 0.25, 0.11},
    {"matching, us", "match", "us", 10000, 0.35, 0.12},
    {"FIFO to TCP, us", "tcp", "us", 100, 1.0, 0.28},
    {"FIFO to TCP, us", "tcp", "us", 10000, 1.3, 0.38},
    {"start to the first event, s", "tcp", "start_s", 10000, 0.3, 0.3},
    {"resident memory, MiB", "tcp", "rss_mib", 10000, 40, 12},
};

/// How many times faster than another program, at every number of FORMATs.
struct Lead {
  const char* subject;
  const char* other;
  const char* ours;
  double must;
  double aim;
};

constexpr Lead kLeads[] = {
    {"times as fast as lognormalizer, printing JSON", "lognormalizer", "print-json", 4, 10},
    {"times as fast as lognormalizer, printing events", "lognormalizer", "print-event", 4, 10},
    {"times as fast as lognormalizer, printing text", "lognormalizer", "print-text", 4, 10},
    {"times as fast as rsyslog, FIFO to TCP", "rsyslog", "tcp", 3, 10},
    {"times as fast as syslog-ng, FIFO to TCP", "syslog-ng", "tcp", 3, 10},
};

constexpr double kGrowthMust = 3;
constexpr double kGrowthAim = 1.5;

std::string at(const char* subject, int formats) {
  return util::format_text("%s, %d FORMATs", subject, formats);
}

void judge_limits(const Results& results, std::vector<Verdict>& verdicts) {
  for (const Limit& limit : kLimits) {
    const auto measured = results.figure(limit.road, limit.formats, limit.metric);
    if (!measured) continue;
    verdicts.push_back(
        {at(limit.subject, limit.formats), limit.must, limit.aim, measured->median, false});
  }
}

void judge_growth(const Results& results, std::vector<Verdict>& verdicts) {
  const auto few = results.figure("match", 10, "us");
  const auto many = results.figure("match", 10000, "us");
  if (!few || !many) return;
  verdicts.push_back({"matching, 10,000 FORMATs against 10", kGrowthMust, kGrowthAim,
                      many->median / few->median, false});
}

void judge_leads(const Results& results, std::vector<Verdict>& verdicts) {
  for (const Lead& lead : kLeads) {
    for (const int formats : results.sizes()) {
      const auto measured = results.ratio(lead.other, lead.ours, formats);
      if (!measured) continue;
      verdicts.push_back({at(lead.subject, formats), lead.must, lead.aim, *measured, true});
    }
  }
}

}  // namespace

std::vector<Verdict> judge(const Results& results) {
  std::vector<Verdict> verdicts;
  judge_limits(results, verdicts);
  judge_growth(results, verdicts);
  judge_leads(results, verdicts);
  return verdicts;
}

}  // namespace zem::bench
