/// Random class files, and events for them, over a small alphabet, so that classes take events, or
/// nearly do: defaults, slots given twice, good and bad PRINTF formats, tests on several
/// attributes, classes without SELECT, *DISCARD*, FETCH, ids that more than one class wants. The
/// same seed gives the same texts. Link zem_frame_test_support.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zem::test {

class RandomClasses {
 public:
  explicit RandomClasses(std::uint32_t seed) : random_(seed) {}

  /// A class file, which is accepted.
  [[nodiscard]] std::string class_file();
  /// The names of an event's attributes, mostly with one `_event_id` in front.
  [[nodiscard]] std::vector<std::string> names();
  /// Values for them, an id that some class may want for `_event_id`.
  [[nodiscard]] std::vector<std::string> values(const std::vector<std::string>& names);
  /// A number below `below`, which is not 0.
  [[nodiscard]] std::size_t pick(std::size_t below) { return random_() % below; }

 private:
  template <std::size_t N>
  const char* one_of(const char* const (&texts)[N]) {
    return texts[pick(N)];
  }
  bool rarely() { return pick(12) == 0; }
  std::string defaults();
  std::string one_class();
  std::string select(std::size_t items);
  std::string item(std::size_t earlier);
  std::string map_line(std::size_t items, bool fetches);
  std::string reference(std::size_t items);
  std::string constant();
  std::string variable(std::size_t items, bool fetches);
  std::string format_for(std::size_t variables);
  std::string printf_of(const std::vector<std::string>& variables);

  std::mt19937 random_;
};

}  // namespace zem::test
