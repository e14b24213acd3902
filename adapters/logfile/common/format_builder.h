/// What the rules of the grammar (config.y) mean: each function builds its part of the entry `fmt`
/// in the set `driver`. Texts are looked at only during the call. The entries of a file share their
/// equal constants, and the names and constant values of their slots.
#pragma once

#include <string_view>

class FormatSpec;

namespace zem::format {

/// A new entry in the set; it becomes `fmt`.
void begin_entry(std::string_view name);
/// The first entry of that name read so far; null, and a counted error, when there is none.
[[nodiscard]] FormatSpec* parent_named(std::string_view name);
/// A piece of the format line that is literal text.
void add_word(std::string_view word);
/// A piece that is a variable or a blank.
void add_piece(std::string_view piece);
/// The format line is complete: inherits from `parent` (null: from none) and compiles the format.
void end_format_line(FormatSpec* parent);

/// `name word`: a variable when the word is "$n", else a constant.
void add_word_slot(std::string_view name, std::string_view word);
/// `name text`, the text a word or in quotes.
void add_constant_slot(std::string_view name, std::string_view text);
void add_default_slot(std::string_view name);

/// A PRINTF slot grows in steps, because its rules come one by one: `print` is made, takes its
/// format and then each argument, and enters the entry when its line is complete.
void begin_print_slot(std::string_view name);
void add_print_rule(std::string_view rule);
void add_print_slot();
/// At the end of a file: forgets a PRINTF slot whose line was never completed, and which texts have
/// occurred.
void end_file();

}  // namespace zem::format
