/// An option that takes one of a few words.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zem::fmt {

template <class Value>
struct Choice {
  const char* word;
  Value value;
};

/// "a|b|c", as the help shows it.
template <class Value>
[[nodiscard]] std::string choice_text(std::span<const Choice<Value>> choices) {
  std::string text;
  for (const Choice<Value>& choice : choices) {
    text.append(text.empty() ? "" : "|").append(choice.word);
  }
  return text;
}

/// Turns the word into the value's number, which the option then reads as its enumeration.
template <class Value>
[[nodiscard]] CLI::Validator choice_of(std::span<const Choice<Value>> choices) {
  const auto take = [choices](std::string& text) -> std::string {
    for (const Choice<Value>& choice : choices) {
      if (text != choice.word) continue;
      text = std::to_string(static_cast<int>(choice.value));
      return {};
    }
    return "\"" + text + "\" is none of " + choice_text(choices);
  };
  return CLI::Validator(take, "", "choice");
}

/// An option for `value`, which is not touched when the option is not given. The choices are
/// static.
template <class Target, class Value, std::size_t N>
CLI::Option* add_choice(CLI::App& app, const std::string& name, Target& value,
                        const std::array<Choice<Value>, N>& words, const std::string& description) {
  const std::span<const Choice<Value>> choices(words);
  return app.add_option(name, value, description)
      ->transform(choice_of(choices))
      ->type_name(choice_text(choices));
}

}  // namespace zem::fmt
