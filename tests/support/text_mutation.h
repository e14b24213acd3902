/// Texts that are nearly right: random small changes, the same for the same seed.
#pragma once

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zem::test {

class TextMutator {
 public:
  /// `words` are what is put in; give those that mean something in the text's language.
  TextMutator(unsigned seed, std::vector<std::string> words)
      : random_(seed), words_(std::move(words)) {}

  /// Up to three changes: a piece left out, doubled, or a word put in.
  std::string operator()(std::string text) {
    for (std::size_t i = 0, count = 1 + below(3); i < count && !text.empty(); ++i) change(text);
    return text;
  }

  /// One to seven of these pieces in a row.
  std::string text_of(const std::vector<const char*>& pieces) {
    std::string text;
    for (std::size_t i = 0, count = 1 + below(7); i < count; ++i)
      text += pieces[below(pieces.size())];
    return text;
  }

  /// A number from 0 to `end` - 1.
  std::size_t below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
  }

 private:
  void change(std::string& text) {
    constexpr std::size_t kPieceBytesMax = 12;
    const std::size_t at = below(text.size());
    switch (below(3)) {
      case 0:
        text.erase(at, 1 + below(kPieceBytesMax));
        break;
      case 1:
        text.insert(at, text.substr(below(text.size()), 1 + below(kPieceBytesMax)));
        break;
      default:
        text.insert(at, words_[below(words_.size())]);
    }
  }

  std::mt19937 random_;
  std::vector<std::string> words_;
};

}  // namespace zem::test
