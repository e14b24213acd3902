/// A second matcher, written from the rules of the format language alone and as naively as can be:
/// strings are cut at their head and copied. It shares no code with the engine, so that the two can
/// be compared on random formats and messages. Link zem_format_test_support.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zem::test {

/// The pieces of a whole format string, blanks as written in one piece each.
[[nodiscard]] std::vector<std::string> plain_pieces(const std::string& format);

/// The captured values in order when the format string matches the whole message.
[[nodiscard]] std::optional<std::vector<std::string>> plain_match(const std::string& format,
                                                                  const std::string& message);

}  // namespace zem::test
