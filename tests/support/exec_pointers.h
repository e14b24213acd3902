/// What the exec family wants of arguments and environment.
#pragma once

#include <string>
#include <vector>

namespace zem::test {

/// Pointers to the texts, and a null pointer behind them. Good while the texts stay as they are.
[[nodiscard]] inline std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace zem::test
