/// Random formats, sets of formats and messages over a small alphabet, so that formats share
/// beginnings and messages match, or nearly do. The same seed gives the same texts. Link
/// zem_format_test_support.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zem::test {

class RandomFormats {
 public:
  explicit RandomFormats(std::uint32_t seed) : random_(seed) {}

  /// A whole format string, widths and formats that can never match included.
  [[nodiscard]] std::string format();
  /// `count` format strings; many go on from where another of them leaves off, some are equal.
  [[nodiscard]] std::vector<std::string> formats(std::size_t count);
  /// A message that the format may well match, often changed a little afterwards.
  [[nodiscard]] std::string message(const std::string& format);
  /// A number below `below`, which is not 0.
  [[nodiscard]] std::size_t pick(std::size_t below) { return random_() % below; }

 private:
  template <std::size_t N>
  const char* one_of(const char* const (&texts)[N]) {
    return texts[pick(N)];
  }
  std::string words(std::size_t count);
  std::string filling(const std::string& piece);
  void change(std::string& text);

  std::mt19937 random_;
};

}  // namespace zem::test
