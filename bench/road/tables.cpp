#include "bench/road/tables.h"

#include <cmath>
#include <cstddef>
#include <span>

#include "bench/road/verdicts.h"
#include "util/text.h"

namespace zem::bench {

namespace {

struct Row {
  const char* road;
  const char* title;
};

constexpr Row kRoads[] = {{"tcp", "FIFO to TCP"},
                          {"file", "FIFO to test file"},
                          {"rsyslog", "rsyslog, mmnormalize"},
                          {"syslog-ng", "syslog-ng, db-parser"}};
constexpr Row kTools[] = {{"print-event", "`zemad_fmt match --format event`, with classes"},
                          {"print-json", "`zemad_fmt match --format json`"},
                          {"print-text", "`zemad_fmt match`"},
                          {"lognormalizer", "`lognormalizer`"},
                          {"pdbtool", "`pdbtool match`"}};
constexpr Row kYardsticks[] = {{"match", "matching alone"},
                               {"split", "yardstick: lines split in memory"},
                               {"fifo", "yardstick: read through a FIFO"},
                               {"send", "yardstick: one send an event"}};
constexpr Row kOurRoads[] = {{"tcp", "FIFO to TCP"}, {"file", "FIFO to test file"}};

std::string with_commas(long number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
  return digits;
}

/// Three digits that count.
std::string short_number(double value) {
  if (value >= 100) return with_commas(std::lround(value));
  return util::format_text("%.*f", value < 1 ? 3 : value < 10 ? 2 : 1, value);
}

std::string median_and_spread(const Figure& figure) {
  return short_number(figure.median) + " (" + short_number(figure.least) + " to " +
         short_number(figure.most) + ")";
}

std::string median(const Figure& figure) { return short_number(figure.median); }

std::string head(const Results& results, const char* title) {
  std::string line = util::format_text("| %s |", title);
  std::string rule = "|---|";
  for (const int formats : results.sizes()) {
    line.append(" ").append(with_commas(formats)).append(" |");
    rule += "---|";
  }
  return line + "\n" + rule + "\n";
}

/// A row of `cell(formats)`, or nothing when all its cells are empty.
template <class Cell>
std::string row(const Results& results, const std::string& title, Cell cell) {
  std::string line = "| " + title + " |";
  bool any = false;
  for (const int formats : results.sizes()) {
    const std::string text = cell(formats);
    any = any || !text.empty();
    line.append(" ").append(text).append(" |");
  }
  return any ? line + "\n" : "";
}

std::string rows(const Results& results, std::span<const Row> all, const char* metric,
                 std::string (*show)(const Figure&)) {
  std::string text;
  for (const Row& each : all) {
    text += row(results, each.title, [&](int formats) {
      const auto figure = results.figure(each.road, formats, metric);
      return figure ? show(*figure) : std::string();
    });
  }
  return text;
}

std::string ratio_rows(const Results& results) {
  std::string text;
  for (const Row& road : kOurRoads) {
    for (const char* yardstick : {"split", "fifo", "send"}) {
      const std::string title = std::string(road.title) + " / " + yardstick;
      text += row(results, title, [&](int formats) {
        const auto ratio = results.ratio(road.road, yardstick, formats);
        return ratio ? short_number(*ratio) : std::string();
      });
    }
  }
  return text;
}

/// `body` below its head, or nothing without a body.
std::string table(const Results& results, const char* title, const std::string& body) {
  return body.empty() ? "" : head(results, title) + body + "\n";
}

}  // namespace

std::string figure_tables(const Results& results) {
  const auto us = [&](std::span<const Row> all) {
    return rows(results, all, "us", median_and_spread);
  };
  return table(results, "whole road, us of processor time a message", us(kRoads)) +
         table(results, "parts of it, us a message", us(kYardsticks)) +
         table(results, "the road as a multiple of a yardstick", ratio_rows(results)) +
         table(results, "tools that print what they found, us a message", us(kTools)) +
         table(results, "messages a second", rows(results, kRoads, "rate", median)) +
         table(results, "resident memory, MiB", rows(results, kRoads, "rss_mib", median)) +
         table(results, "start to the first event, s", rows(results, kRoads, "start_s", median)) +
         table(results, "start-up, s of processor time",
               rows(results, kRoads, "start_cpu_s", median) +
                   rows(results, kTools, "start_cpu_s", median));
}

std::string verdict_table(const Results& results) {
  std::string text = "| figure | must | aim | measured | |\n|---|---|---|---|---|\n";
  for (const Verdict& verdict : judge(results)) {
    const char* word = verdict.reaches_aim() ? "aim reached" : verdict.holds() ? "holds" : "MISSED";
    text += "| " + verdict.subject + " | " + short_number(verdict.must) + " | " +
            short_number(verdict.aim) + " | " + short_number(verdict.measured) + " | " + word +
            " |\n";
  }
  return text;
}

}  // namespace zem::bench
