/// The one way in which the outside world (time, name service, connections) is exchanged: each
/// interface names its system implementation, and a test, or a tool's main, puts its own in front
/// of it for the length of a scope. All other code only ever calls `current<Interface>()`.
#pragma once

namespace zem::util {

/// Specialised once per interface by the header that declares it: the implementation that talks to
/// the real system. It lives as long as the process.
template <class Interface>
Interface& system_implementation();

namespace detail {
template <class Interface>
inline Interface* installed_double = nullptr;
}

/// What the code under test talks to: the double of the innermost scope, else the system.
template <class Interface>
[[nodiscard]] Interface& current() {
  if (detail::installed_double<Interface> != nullptr) return *detail::installed_double<Interface>;
  return system_implementation<Interface>();
}

/// Installs `replacement` (not owned, must outlive the scope) until the end of the scope.
template <class Interface>
class ScopedDouble {
 public:
  explicit ScopedDouble(Interface& replacement) : previous_(detail::installed_double<Interface>) {
    detail::installed_double<Interface> = &replacement;
  }
  ScopedDouble(const ScopedDouble&) = delete;
  ScopedDouble& operator=(const ScopedDouble&) = delete;
  ~ScopedDouble() { detail::installed_double<Interface> = previous_; }

 private:
  Interface* previous_;
};

}  // namespace zem::util
