#include "tools/receiver/event_line.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "tools/receiver/event_text.h"
#include "tools/receiver/utf8.h"
#include "util/text.h"

namespace zem::receiver {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

void append_hex(unsigned char byte, std::string& out) {
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 0xF];
}

/// Walks the characters of `text`: a well-formed sequence goes to `character`, every other byte to
/// `stray`.
template <class Character, class Stray>
void for_each_character(std::string_view text, Character character, Stray stray) {
  while (!text.empty()) {
    const std::size_t length = utf8_sequence_length(text);
    if (length == 0) {
      stray(static_cast<unsigned char>(text.front()));
    } else {
      character(text.substr(0, length));
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
}

bool is_utf8(std::string_view text) {
  bool clean = true;
  for_each_character(
      text, [](std::string_view) {}, [&](unsigned char) { clean = false; });
  return clean;
}

// --- Text ---

void append_escaped_byte(unsigned char byte, std::string& out) {
  out += "\\x";
  append_hex(byte, out);
}

void append_readable_character(std::string_view character, std::string& out) {
  if (character == "\\") {
    out += "\\\\";
  } else if (is_control_sequence(character)) {
    for (const char byte : character) append_escaped_byte(static_cast<unsigned char>(byte), out);
  } else {
    out += character;
  }
}

void append_readable(std::string_view text, std::string& out) {
  for_each_character(
      text, [&](std::string_view character) { append_readable_character(character, out); },
      [&](unsigned char stray) { append_escaped_byte(stray, out); });
}

// --- JSON ---

/// The code point of a control character: the last byte of its sequence is its value.
void append_json_control(std::string_view character, std::string& out) {
  out += "\\u00";
  append_hex(static_cast<unsigned char>(character.back()), out);
}

void append_json_character(std::string_view character, std::string& out) {
  if (character == "\"" || character == "\\") {
    out += '\\';
    out += character;
  } else if (is_control_sequence(character)) {
    append_json_control(character, out);
  } else {
    out += character;
  }
}

void append_json_string(std::string_view text, std::string& out) {
  out += '"';
  for_each_character(
      text, [&](std::string_view character) { append_json_character(character, out); },
      [&](unsigned char) { out += "\xEF\xBF\xBD"; });
  out += '"';
}

void append_member(std::string_view name, std::string_view value, std::string& out) {
  append_json_string(name, out);
  out += ':';
  append_json_string(value, out);
}

std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= group.size() ? kDigits[bits >> (18 - 6 * i) & 0x3F] : '=';
    }
  }
  return text;
}

std::string iso_time(std::chrono::system_clock::time_point at) {
  const auto since_epoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(at.time_since_epoch()).count();
  const std::time_t seconds = since_epoch / 1000;
  std::tm broken{};
  ::gmtime_r(&seconds, &broken);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &broken);
  return std::string(text.data(), length) +
         util::format_text(".%03dZ", static_cast<int>(since_epoch % 1000));
}

/// A slot name with all its values.
struct Group {
  std::string_view name;
  std::vector<std::string_view> values;
};

/// Names in the order of their first appearance, values in the order of the text.
std::vector<Group> grouped(const std::vector<Slot>& slots) {
  std::vector<Group> groups;
  std::map<std::string_view, std::size_t> place;
  for (const Slot& slot : slots) {
    const auto [at, is_new] = place.try_emplace(slot.name, groups.size());
    if (is_new) groups.push_back({slot.name, {}});
    groups[at->second].values.push_back(slot.value);
  }
  return groups;
}

void append_array(const std::vector<std::string_view>& values, std::string& out) {
  char separator = '[';
  for (const std::string_view value : values) {
    out += separator;
    append_json_string(value, out);
    separator = ',';
  }
  out += ']';
}

void append_slots(const std::vector<Slot>& slots, std::string& out) {
  out += '{';
  bool is_first = true;
  for (const Group& group : grouped(slots)) {
    if (!std::exchange(is_first, false)) out += ',';
    append_json_string(group.name, out);
    out += ':';
    if (group.values.size() == 1) {
      append_json_string(group.values.front(), out);
    } else {
      append_array(group.values, out);
    }
  }
  out += '}';
}

void append_event_members(const Event& event, std::string& out) {
  append_member("class", event.class_name, out);
  out += ",\"slots\":";
  append_slots(event.slots, out);
}

}  // namespace

void append_text_line(const Received& received, std::string& out) {
  append_readable(without_terminator(received.text), out);
  out += '\n';
}

void append_json_line(const Received& received, std::string& out) {
  out += '{';
  append_member("received", iso_time(received.at), out);
  out += ',';
  append_member("peer", received.peer, out);
  out += ',';
  if (const std::optional<Event> event = parse_event(received.text)) {
    append_event_members(*event, out);
  } else {
    append_member("text", without_terminator(received.text), out);
  }
  if (!is_utf8(received.text)) {
    out += ',';
    append_member("raw", base64(received.text), out);
  }
  out += "}\n";
}

}  // namespace zem::receiver
