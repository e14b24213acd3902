// The FORMAT of "user %s from %s" with the slots "user $1", "hostname $2" and "origin DEFAULT"
// gives this form in JSON, in which bars enclose the fields:
//
//   ,"index":|index|,"values":["|$1|","|$2|"],"slots":{"_event_id":"|index|","user":"|$1|",
//   "hostname":"|$2|","origin":"|address of $2|"}
#include "tools/fmt/print_form.h"

#include <algorithm>

namespace zem::fmt {

using Source = format::SlotSource;

void PrintForm::add_index() { add_field(Kind::kIndex, 0); }

void PrintForm::add_value(const Source& source, const MatchResult& result) {
  const auto part = static_cast<std::size_t>(source.variable) - 1;  // huge for 0
  const bool is_captured = part < result.captures->count();
  if (is_captured && source.kind == Source::Kind::kVariable) {
    add_field(Kind::kCaptured, part);
  } else if (is_captured && source.kind == Source::Kind::kNamedAddress) {
    add_field(Kind::kAddress, part);
  } else {
    escape_(text_, format::value_of(*result.spec, source, result.host, result.captures));
  }
}

void PrintForm::add_field(Kind kind, std::size_t part) {
  fields_.push_back({text_.size() - text_before_fields_, part, kind});
  text_before_fields_ = text_.size();
}

void PrintForm::fill(const MatchResult& result, bool is_plain, TextBuffer& out) const {
  if (is_plain) {
    fill_plain(result, out);
  } else {
    fill_escaped(result, out);
  }
}

/// No captured value is longer than its message, and no address than a number may be.
void PrintForm::fill_plain(const MatchResult& result, TextBuffer& out) const {
  const std::size_t value_bytes = std::max(result.message.text.size(), TextCursor::kNumberBytes);
  TextCursor cursor = out.room(text_.size() + fields_.size() * value_bytes);
  std::string_view text = text_.view();
  for (const Field& field : fields_) {
    cursor.put_blocks(text.substr(0, field.text_bytes));
    text.remove_prefix(field.text_bytes);
    if (field.kind == Kind::kCaptured) {
      cursor.put_blocks(result.captures->view(field.part));
    } else if (field.kind == Kind::kIndex) {
      cursor.put_number(result.index);
    } else {
      cursor.put(format::address_of(result.captures->view(field.part)));
    }
  }
  cursor.put_blocks(text);
  out.end_at(cursor);
}

void PrintForm::fill_escaped(const MatchResult& result, TextBuffer& out) const {
  std::string_view text = text_.view();
  for (const Field& field : fields_) {
    out.append(text.substr(0, field.text_bytes));
    text.remove_prefix(field.text_bytes);
    if (field.kind == Kind::kCaptured) {
      escape_(out, result.captures->view(field.part));
    } else if (field.kind == Kind::kIndex) {
      out.append_number(result.index);
    } else {
      out.append(format::address_of(result.captures->view(field.part)));
    }
  }
  out.append(text);
}

bool PrintForm::operator<(const PrintForm& other) const {
  const int order = text_.view().compare(other.text_.view());
  return order != 0 ? order < 0 : fields_ < other.fields_;
}

}  // namespace zem::fmt
