#include "tools/fmt/class_words.h"

#include "adapters/libzemad/class_scanner.h"
#include "tools/fmt/byte_feed.h"

namespace zem::fmt {

bool is_plain_class_word(const std::string& word) {
  const ByteFeed feed(word + "\n");
  kernel::ClassScanner scanner(ByteFeed::next, [](const char* /*name*/) { return -1; });
  return scanner.yylexreal() == TOKEN_STRING && scanner.text() == word &&
         scanner.yylexreal() == kernel::ClassScanner::kEndOfInput;
}

}  // namespace zem::fmt
