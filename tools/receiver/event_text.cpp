#include "tools/receiver/event_text.h"

#include <utility>

namespace zem::receiver {
namespace {

constexpr char kQuote = '\'';

/// Takes a quoted token off the front of `rest`, which begins with a quote; a doubled quote inside
/// stands for one.
std::optional<std::string> take_quoted(std::string_view& rest) {
  std::string token;
  rest.remove_prefix(1);
  while (true) {
    const std::size_t quote = rest.find(kQuote);
    if (quote == std::string_view::npos) return std::nullopt;
    token.append(rest.substr(0, quote));
    rest.remove_prefix(quote + 1);
    if (!rest.starts_with(kQuote)) return token;
    token += kQuote;
    rest.remove_prefix(1);
  }
}

/// Takes a token and the `delimiter` behind it off the front of `rest`.
std::optional<std::string> take_token(std::string_view& rest, char delimiter) {
  std::optional<std::string> token;
  if (rest.starts_with(kQuote)) {
    token = take_quoted(rest);
    if (!token.has_value() || !rest.starts_with(delimiter)) return std::nullopt;
    rest.remove_prefix(1);
    return token;
  }
  const std::size_t end = rest.find(delimiter);
  if (end == std::string_view::npos) return std::nullopt;
  token = std::string(rest.substr(0, end));
  rest.remove_prefix(end + 1);
  return token;
}

}  // namespace

std::string_view without_terminator(std::string_view text) {
  if (text.ends_with('\x01')) text.remove_suffix(1);
  if (text.ends_with('\n')) text.remove_suffix(1);
  return text;
}

std::optional<Event> parse_event(std::string_view text) {
  std::string_view rest = without_terminator(text);
  const std::size_t class_end = rest.find(';');
  if (class_end == std::string_view::npos) return std::nullopt;
  Event event{std::string(rest.substr(0, class_end)), {}};
  rest.remove_prefix(class_end + 1);
  while (rest != "END") {
    std::optional<std::string> name = take_token(rest, '=');
    if (!name.has_value()) return std::nullopt;
    std::optional<std::string> value = take_token(rest, ';');
    if (!value.has_value()) return std::nullopt;
    event.slots.push_back({*std::move(name), *std::move(value)});
  }
  return event;
}

}  // namespace zem::receiver
