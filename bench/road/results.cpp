#include "bench/road/results.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>

namespace zem::bench {

namespace {

double median_of(const std::vector<double>& sorted) {
  const std::size_t middle = sorted.size() / 2;
  return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

}  // namespace

Results::Results(std::istream& lines) {
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string road;
    std::string metric;
    int formats = 0;
    double value = 0;
    char comma = 0;
    std::getline(fields, road, ',');
    fields >> formats >> comma;
    std::getline(fields, metric, ',');
    if (!(fields >> value)) throw std::runtime_error("no result: " + line);
    values_[{road, formats, metric}].push_back(value);
  }
  for (auto& [key, values] : values_) std::ranges::sort(values);
}

std::optional<Figure> Results::figure(std::string_view road, int formats,
                                      std::string_view metric) const {
  const auto found = values_.find({std::string(road), formats, std::string(metric)});
  if (found == values_.end()) return std::nullopt;
  const std::vector<double>& values = found->second;
  return Figure{median_of(values), values.front(), values.back()};
}

std::optional<double> Results::ratio(std::string_view road, std::string_view other, int formats,
                                     std::string_view metric) const {
  const auto one = figure(road, formats, metric);
  const auto two = figure(other, formats, metric);
  if (!one || !two || two->median <= 0) return std::nullopt;
  return one->median / two->median;
}

std::vector<int> Results::sizes() const {
  std::set<int> sizes;
  for (const auto& [key, values] : values_) sizes.insert(std::get<int>(key));
  return {sizes.begin(), sizes.end()};
}

}  // namespace zem::bench
