/// The figures of a run of script/bench: every value that was measured, by what was measured (its
/// road), the number of FORMATs, and the metric.
#pragma once

#include <istream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace zem::bench {

/// What several measurements of one thing come to.
struct Figure {
  double median = 0;
  double least = 0;
  double most = 0;
};

class Results {
 public:
  /// Reads lines "ROAD,FORMATS,METRIC,VALUE". Throws std::runtime_error with the line that is none.
  explicit Results(std::istream& lines);

  /// Nothing when it was not measured.
  [[nodiscard]] std::optional<Figure> figure(std::string_view road, int formats,
                                             std::string_view metric) const;
  /// The median of one divided by that of the other, both of them `metric` with as many FORMATs.
  [[nodiscard]] std::optional<double> ratio(std::string_view road, std::string_view other,
                                            int formats, std::string_view metric = "us") const;
  /// The numbers of FORMATs that were measured, rising.
  [[nodiscard]] std::vector<int> sizes() const;

 private:
  using Key = std::tuple<std::string, int, std::string>;  ///< road, FORMATs, metric

  std::map<Key, std::vector<double>> values_;  ///< each sorted
};

}  // namespace zem::bench
