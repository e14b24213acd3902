#include "util/strobj.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr const char* kBlanks = " \t";

std::string_view view_of(const char* text) noexcept {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

/// What an index without a character refers to; what was written there is forgotten.
char& spare_character() noexcept {
  static char spare;
  spare = '\0';
  return spare;
}

}  // namespace

tvStrobj::tvStrobj(const char* text) {
  if (text != nullptr) assign(text);
}

tvStrobj::tvStrobj(std::string_view text) { assign(text); }

tvStrobj tvStrobj::operator=(const char* text) {
  if (text != nullptr) {
    assign(text);
  } else {
    *this = tvStrobj();
  }
  return *this;
}

void tvStrobj::assign(std::string_view text) { rebuild(text, "", chunks(text.size() + 1)); }

// Both parts may lie in the old buffer, which therefore lives until they are copied.
void tvStrobj::rebuild(std::string_view head, std::string_view tail, std::size_t capacity) {
  auto buffer = std::make_unique_for_overwrite<char[]>(capacity);
  char* end = std::copy(head.begin(), head.end(), buffer.get());
  end = std::copy(tail.begin(), tail.end(), end);
  *end = '\0';

  length_ = head.size() + tail.size();
  capacity_ = capacity;
  if (isShared()) rep_ = Shared();
  rep_->text = std::move(buffer);
}

void tvStrobj::detach() {
  if (isShared() && getString() != nullptr) rebuild(view(), "", capacity_);
}

void tvStrobj::setString(const char* text) {
  if (capacity_ == 0) return;
  detach();
  length_ = std::min(view_of(text).size(), capacity_ - 1);
  std::memmove(rep_->text.get(), text, length_);
  rep_->text[length_] = '\0';
}

tvStrobj& tvStrobj::append(const char* text) { return append(view_of(text)); }

tvStrobj& tvStrobj::append(std::string_view text) {
  if (text.empty()) return *this;
  const std::size_t total = length_ + text.size();
  if (isShared()) {
    rebuild(view(), text, chunks(total + 1));
  } else if (total >= capacity_) {
    rebuild(view(), text, capacity_ + chunks(text.size() + 1));
  } else {
    *std::copy(text.begin(), text.end(), rep_->text.get() + length_) = '\0';
    length_ = total;
  }
  return *this;
}

bool tvStrobj::isInside(int i) const {
  const bool is_in_range = i >= 0 && static_cast<std::size_t>(i) <= length_;
  if (!is_in_range) std::fputs("index out of range", stderr);
  return is_in_range && getString() != nullptr;
}

char& tvStrobj::operator[](int i) {
  if (!isInside(i)) return spare_character();
  detach();
  return rep_->text[static_cast<std::size_t>(i)];
}

const char& tvStrobj::operator[](int i) const {
  return isInside(i) ? rep_->text[static_cast<std::size_t>(i)] : spare_character();
}

void tvStrobj::keep(std::size_t start, std::size_t count) {
  if (count == length_) return;
  detach();
  char* const text = rep_->text.get();
  *std::copy_n(text + start, count, text) = '\0';
  length_ = count;
}

void tvStrobj::ltrim(const char* set) {
  const std::size_t start = std::min(view().find_first_not_of(view_of(set)), length_);
  keep(start, length_ - start);
}

void tvStrobj::rtrim(const char* set) {
  if (length_ == 0) return;
  const std::size_t last = view().find_last_not_of(view_of(set));
  keep(0, last == std::string_view::npos ? 1 : last + 1);
}

void tvStrobj::trim(const char* set) {
  rtrim(set);
  ltrim(set);
}

void tvStrobj::remove(int n) {
  const auto count = static_cast<std::size_t>(std::max(n, 0));
  if (count < length_) keep(count, length_ - count);
}

void tvStrobj::ljust(int width) {
  const auto target = static_cast<std::size_t>(std::max(width, 0));
  if (width < 0 || length_ > target) return;
  ltrim(kBlanks);
  rebuild(view(), blanks(target - length_), target + 1);
}

void tvStrobj::rjust(int width) {
  rtrim(kBlanks);
  const auto target = static_cast<std::size_t>(std::max(width, 0));
  if (width < 0 || length_ > target) return;
  rebuild(blanks(target - length_), view(), target + 1);
}

void tvStrobj::center(int width) {
  trim(kBlanks);
  if (width < 0 || length_ >= static_cast<std::size_t>(width)) return;
  rjust(static_cast<int>((length_ + static_cast<std::size_t>(width)) / 2));
  ljust(width);
}

void tvStrobj::upper() {
  detach();
  std::transform(view().begin(), view().end(), rep_->text.get(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
}

void tvStrobj::lower() {
  detach();
  std::transform(view().begin(), view().end(), rep_->text.get(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
}

void tvStrobj::print() const {
  if (getString() != nullptr) std::fputs(getString(), stdout);
}

bool operator==(const tvStrobj& s, const char* text) noexcept {
  if (s.getString() == nullptr || text == nullptr) return s.getString() == text;
  return s.view() == text;
}

bool operator==(const tvStrobj& s, const tvStrobj& t) noexcept {
  const bool is_one_without = (s.getString() == nullptr) != (t.getString() == nullptr);
  return !is_one_without && s.view() == t.view();
}
