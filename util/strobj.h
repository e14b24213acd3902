/// The format engine's string: handles that share one text until one of them changes it. A handle
/// may have no text at all, which differs from an empty text. Every change through a named
/// operation first copies a text that others share; only a pointer from `operator char*` writes
/// past that. One thread: the count is a plain int.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

class tvStrobj {
 public:
  /// The shared representation.
  struct srep {
    std::unique_ptr<char[]> text;  ///< NUL-terminated, or null
    int refs = 1;                  ///< handles that share it
  };

  /// Buffer size for `n` bytes: whole chunks of 108, always one more than n / 108 of them.
  static constexpr std::size_t chunks(std::size_t n) noexcept { return (n / 108 + 1) * 108; }

  tvStrobj() = default;
  /// Null makes a string without text.
  tvStrobj(const char* text);
  explicit tvStrobj(std::string_view text);
  tvStrobj(const tvStrobj&) = default;
  tvStrobj& operator=(const tvStrobj&) = default;
  virtual ~tvStrobj() = default;

  /// Takes a copy of `text`, which may point into this string; null leaves it without text. Other
  /// handles keep theirs.
  tvStrobj operator=(const char* text);

  /// The text, or null. It lives until the next change of this string; writing through it is seen
  /// by every handle that shares it, and must keep its length.
  operator const char*() const noexcept { return rep_->text.get(); }
  operator char*() const noexcept { return rep_->text.get(); }
  [[nodiscard]] const char* getString() const noexcept { return rep_->text.get(); }
  /// The same as a view; empty when there is no text.
  [[nodiscard]] std::string_view view() const noexcept { return {getString(), length_}; }

  /// Characters, without the terminating NUL.
  [[nodiscard]] std::size_t length() const noexcept { return length_; }
  /// Bytes of the text buffer; always more than `length` when there is text.
  [[nodiscard]] std::size_t capacity() const noexcept { return capacity_; }

  /// Copies `text` (not null) into the buffer as far as there is room; the buffer does not grow.
  void setString(const char* text);

  /// Appends a copy of `text`, which may point into this string. Null and "" change nothing.
  tvStrobj& append(const char* text);
  tvStrobj& append(std::string_view text);
  tvStrobj& operator<<(const char* text) { return append(text); }
  tvStrobj& operator<<(std::string_view text) { return append(text); }

  /// Character `i`; `length` gives the NUL. Beyond that it writes "index out of range" to standard
  /// error and yields a spare character, as does a string without text.
  char& operator[](int i);
  const char& operator[](int i) const;

  /// Remove the characters of `set` at the start, the end, or both (the end first). `rtrim` never
  /// removes the first character.
  void ltrim(const char* set);
  void rtrim(const char* set);
  void trim(const char* set);
  /// Removes the first `n` characters when 0 < n < length; otherwise changes nothing.
  void remove(int n);

  /// When the text is at most `width` long: blanks and tabs at its start go, blanks at its end
  /// fill it up to `width`. A longer text stays as it is.
  void ljust(int width);
  /// Blanks and tabs at the end go; a text of at most `width` is filled up at its start.
  void rjust(int width);
  /// Blanks and tabs go on both sides; a text shorter than `width` passes through
  /// `rjust((length + width) / 2)` and `ljust(width)`. Deliberate: the latter trims what the former
  /// put at the start, so the text ends up on the left (TvStrobjEdits:
  /// CenterEndsUpOnTheLeft).
  void center(int width);

  void upper();
  void lower();

  /// Writes the text, if any, to standard output.
  void print() const;

 private:
  /// One counted reference to a representation, its own one to begin with.
  class Shared {
   public:
    Shared() : rep_(std::make_unique<srep>().release()) {}
    Shared(const Shared& other) noexcept : rep_(other.rep_) { ++rep_->refs; }
    Shared& operator=(Shared other) noexcept {
      std::swap(rep_, other.rep_);
      return *this;
    }
    ~Shared() {
      if (--rep_->refs == 0) std::default_delete<srep>()(rep_);
    }
    srep* operator->() const noexcept { return rep_; }

   private:
    srep* rep_;
  };

  [[nodiscard]] bool isShared() const noexcept { return rep_->refs > 1; }
  void assign(std::string_view text);
  /// The text becomes `head` and `tail`, in a new buffer of this handle alone.
  void rebuild(std::string_view head, std::string_view tail, std::size_t capacity);
  void detach();
  /// Keeps `count` characters from `start` on.
  void keep(std::size_t start, std::size_t count);
  [[nodiscard]] bool isInside(int i) const;

  Shared rep_;
  std::size_t length_ = 0;
  std::size_t capacity_ = 0;
};

/// Equal texts, or no text on both sides. `!=` is the negation.
[[nodiscard]] bool operator==(const tvStrobj& s, const char* text) noexcept;
[[nodiscard]] bool operator==(const tvStrobj& s, const tvStrobj& t) noexcept;
