#include "bench/road/plot.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "util/text.h"

namespace zem::bench {

namespace {

struct Line {
  const char* road;
  const char* title;
  const char* colour;
  bool ours;
};

constexpr Line kLines[] = {
    {"match", "matching alone", "#1b9e77", true},
    {"print-event", "zemad_fmt match, with classes", "#66a61e", true},
    {"tcp", "zemad_logfile, FIFO to TCP", "#1f5fbf", true},
    {"lognormalizer", "lognormalizer", "#d95f02", false},
    {"pdbtool", "pdbtool match", "#a6761d", false},
    {"rsyslog", "rsyslog, mmnormalize, to TCP", "#b2182b", false},
    {"syslog-ng", "syslog-ng, db-parser, to TCP", "#7b3294", false},
};

constexpr double kLeft = 70;
constexpr double kTop = 20;
constexpr double kWidth = 480;
constexpr double kHeight = 340;
constexpr double kLegendGap = 15;  ///< least distance of two texts beside the lines

struct Point {
  double x = 0;
  double y = 0;
};

/// Where values stand in the picture.
class Axes {
 public:
  explicit Axes(const Results& results) {
    const std::vector<int> sizes = results.sizes();
    if (!sizes.empty()) least_x_ = std::log10(sizes.front());
    if (!sizes.empty()) most_x_ = std::max(std::log10(sizes.back()), least_x_ + 1);
    for (const Line& line : kLines) {
      for (const int formats : sizes) {
        if (const auto figure = results.figure(line.road, formats, "us")) widen(figure->median);
      }
    }
  }

  [[nodiscard]] Point at(int formats, double us) const {
    const double across = (std::log10(formats) - least_x_) / (most_x_ - least_x_);
    const double up = (std::log10(us) - least_y_) / (most_y_ - least_y_);
    return {kLeft + across * kWidth, kTop + kHeight - up * kHeight};
  }
  [[nodiscard]] int least_decade() const { return static_cast<int>(least_y_); }
  [[nodiscard]] int most_decade() const { return static_cast<int>(most_y_); }

 private:
  void widen(double us) {
    least_y_ = std::min(least_y_, std::floor(std::log10(us)));
    most_y_ = std::max(most_y_, std::ceil(std::log10(us)));
  }

  double least_x_ = 1;
  double most_x_ = 4;
  double least_y_ = -1;
  double most_y_ = 1;
};

std::string text_at(Point where, const char* anchor, const std::string& text,
                    const char* colour = "#333") {
  return util::format_text("<text x='%.1f' y='%.1f' text-anchor='%s' fill='%s'>%s</text>\n",
                           where.x, where.y, anchor, colour, text.c_str());
}

std::string stroke(Point from, Point to, const char* colour) {
  return util::format_text(
      "<line x1='%.1f' y1='%.1f' x2='%.1f' y2='%.1f' stroke='%s' stroke-width='0.7'/>\n", from.x,
      from.y, to.x, to.y, colour);
}

std::string grid(const Axes& axes, const std::vector<int>& sizes) {
  std::string svg;
  for (int decade = axes.least_decade(); decade <= axes.most_decade(); ++decade) {
    for (int step = 1; step < (decade == axes.most_decade() ? 2 : 10); ++step) {
      const double us = step * std::pow(10, decade);
      const double y = axes.at(10, us).y;
      svg += stroke({kLeft, y}, {kLeft + kWidth, y}, step == 1 ? "#bbb" : "#eee");
      if (step == 1) svg += text_at({kLeft - 8, y + 4}, "end", util::format_text("%g", us));
    }
  }
  for (const int formats : sizes) {
    const double x = axes.at(formats, 1).x;
    svg += stroke({x, kTop}, {x, kTop + kHeight}, "#bbb");
    svg += text_at({x, kTop + kHeight + 18}, "middle", std::to_string(formats));
  }
  svg += text_at({kLeft + kWidth / 2, kTop + kHeight + 38}, "middle", "FORMATs");
  return svg + util::format_text(
                   "<text transform='translate(20,%.1f) rotate(-90)' text-anchor='middle' "
                   "fill='#333'>&#181;s of processor time a message</text>\n",
                   kTop + kHeight / 2);
}

/// A line as it is drawn; its title stands beside the last point.
struct Drawn {
  const Line* line;
  std::vector<Point> points;
};

std::vector<Drawn> lines_of(const Results& results, const Axes& axes) {
  std::vector<Drawn> all;
  for (const Line& line : kLines) {
    Drawn drawn{&line, {}};
    for (const int formats : results.sizes()) {
      const auto figure = results.figure(line.road, formats, "us");
      if (figure) drawn.points.push_back(axes.at(formats, figure->median));
    }
    if (!drawn.points.empty()) all.push_back(drawn);
  }
  std::ranges::sort(all, {}, [](const Drawn& drawn) { return drawn.points.back().y; });
  return all;
}

std::string draw(const Drawn& drawn) {
  const double width = drawn.line->ours ? 2.8 : 1.4;
  std::string svg = util::format_text(
      "<polyline fill='none' stroke='%s' stroke-width='%.1f' points='", drawn.line->colour, width);
  for (const Point& point : drawn.points) svg += util::format_text("%.1f,%.1f ", point.x, point.y);
  svg += "'/>\n";
  for (const Point& point : drawn.points) {
    svg += util::format_text("<circle cx='%.1f' cy='%.1f' r='%.1f' fill='%s'/>\n", point.x, point.y,
                             width + 0.6, drawn.line->colour);
  }
  return svg;
}

}  // namespace

std::string plot(const Results& results) {
  const Axes axes(results);
  std::string svg =
      "<svg xmlns='http://www.w3.org/2000/svg' width='800' height='410' viewBox='0 0 800 410' "
      "font-family='sans-serif' font-size='12'>\n<rect width='800' height='410' fill='white'/>\n";
  svg += grid(axes, results.sizes());
  double free_from = 0;
  for (const Drawn& drawn : lines_of(results, axes)) {
    const Point last = drawn.points.back();
    free_from = std::max(free_from, last.y + 4);
    svg += draw(drawn);
    svg += text_at({last.x + 10, free_from}, "start", drawn.line->title, drawn.line->colour);
    free_from += kLegendGap;
  }
  return svg + "</svg>\n";
}

}  // namespace zem::bench
