/// A text of unknown bytes on a terminal, with marks below it that stand where they should.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zem::fmt {

/// Every character as wide as it counts in `width_of`: a control byte, which would move the cursor,
/// is shown as a question mark. Tabs stay.
[[nodiscard]] std::string printable(std::string_view text);
/// Blanks as wide as `text`, tabs as tabs.
[[nodiscard]] std::string blanks_below(std::string_view text);
/// Characters of UTF-8; a byte that belongs to none counts as one.
[[nodiscard]] std::size_t width_of(std::string_view text);

/// Labels below a line, in as many rows as it takes to keep them apart.
class LabelRows {
 public:
  void put(std::size_t column, std::string_view label);
  [[nodiscard]] const std::vector<std::string>& rows() const noexcept { return rows_; }

 private:
  std::vector<std::string> rows_;
};

}  // namespace zem::fmt
