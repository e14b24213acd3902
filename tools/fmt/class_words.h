/// How the class language reads a word that the generator writes without quotes.
#pragma once

#include <string>

namespace zem::fmt {

/// True when `word` stands for itself: no reserved word, number or reference, and nothing in it
/// that ends a word there or is dropped. Asks the class language's own scanner.
[[nodiscard]] bool is_plain_class_word(const std::string& word);

}  // namespace zem::fmt
