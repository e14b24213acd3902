/// The class definition language: reads a text and fills the kernel's three lists through
/// the record constructors of parse_config.h.
#pragma once

#include <string_view>

/// Next byte (0 to 255), or -1 at the end.
using ZEMAD_GetRoutineChar = int (*)();

/// Parses what `get_routine` delivers. Zero means that the whole text was accepted; with any other
/// result the lists hold what was built so far and are not usable. `file_name` is for messages.
int zemad_parse(ZEMAD_GetRoutineChar get_routine, const char* file_name);
/// The same of a text in memory.
int zemad_parse(std::string_view text, const char* file_name);
