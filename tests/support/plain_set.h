/// What a set of FORMATs makes of a message, found by asking one FORMAT after the other: the
/// reference for the compiled set. Link zem_format_test_support.
#pragma once

#include <string>
#include <string_view>

class FormatSpec;
class LogDriver;

namespace zem::test {

/// A match on one line: place in list order, name and values, "2 name|first|second"; "no match"
/// when there is none.
[[nodiscard]] std::string plain_bind(const LogDriver& set, const char* message);
/// The same from the set's own `bind`, for which `message` ends at its first NUL. Wants `index` to
/// be the place counted from the end.
[[nodiscard]] std::string compiled_bind(LogDriver& set, std::string_view message);

}  // namespace zem::test
