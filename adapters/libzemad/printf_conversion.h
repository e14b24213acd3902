/// One conversion of a PRINTF format, %[blank # + - 0]*[width][.precision]s, whatever the letter at
/// its end.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace zem::kernel {

struct Conversion {
  /// Numbers in a format stop here.
  static constexpr std::size_t kNumberMax = std::numeric_limits<int>::max();

  bool is_left_justified = false;
  char fill = ' ';
  std::size_t width = 0;
  std::size_t precision = kNumberMax;
  bool is_string = true;  ///< false: the letter is another one, or the format ended

  /// What is left of `value`.
  [[nodiscard]] std::string_view cut(std::string_view value) const {
    return value.substr(0, precision);
  }
  /// How many fill characters belong beside what is left of it. Deliberate: they are zeros whenever
  /// those were asked for, on the right side, too (MapPrintf.Formats).
  [[nodiscard]] std::size_t fill_beside(std::string_view cut_value) const {
    return cut_value.size() < width ? width - cut_value.size() : 0;
  }
  /// Appends the value, cut and filled.
  void append(std::string_view value, std::string& text) const;
  /// True for a bare %s, which leaves every value as it is.
  [[nodiscard]] bool is_plain() const { return width == 0 && precision == kNumberMax; }
};

/// Takes what follows a % off `cursor`, the conversion letter included whatever it is. A format may
/// end anywhere inside.
[[nodiscard]] Conversion take_conversion(std::string_view& cursor);

}  // namespace zem::kernel
