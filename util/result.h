/// The outcome of an operation that the world may refuse (disk, socket, name service): a value, or
/// an Error that names the operation, its object and the errno text. A small subset of
/// std::expected under the same names, so that it can go once the compiler brings its own.
#pragma once

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace zem::util {

struct Error {
  std::string operation;  ///< what was tried: "open", "connect"
  std::string object;     ///< on what: a path, an address
  int code = 0;           ///< errno value

  /// "open /x: No such file or directory"
  [[nodiscard]] std::string text() const {
    return operation + " " + object + ": " + std::generic_category().message(code);
  }
};

/// The Error for what errno says right now.
[[nodiscard]] inline Error last_error(std::string operation, std::string object) {
  const int code = errno;
  return Error{std::move(operation), std::move(object), code};
}

/// Deliberate: both conversions are implicit, so that a function returns a value or an Error as is.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::move(value)) {}
  Result(Error error) : state_(std::move(error)) {}

  [[nodiscard]] bool has_value() const noexcept { return state_.index() == 0; }
  [[nodiscard]] explicit operator bool() const noexcept { return has_value(); }
  [[nodiscard]] T& value() & { return std::get<0>(state_); }
  [[nodiscard]] const T& value() const& { return std::get<0>(state_); }
  [[nodiscard]] T&& value() && { return std::get<0>(std::move(state_)); }
  [[nodiscard]] T& operator*() & { return value(); }
  [[nodiscard]] const T& operator*() const& { return value(); }
  [[nodiscard]] T&& operator*() && { return std::move(*this).value(); }
  [[nodiscard]] T* operator->() { return &value(); }
  [[nodiscard]] const Error& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, Error> state_;
};

/// A Result without a value.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::move(error)), ok_(false) {}

  [[nodiscard]] bool ok() const noexcept { return ok_; }
  [[nodiscard]] const Error& error() const noexcept { return error_; }

 private:
  Error error_;
  bool ok_ = true;
};

}  // namespace zem::util
