/// Addresses of the hosts named in messages, looked up when events are built.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "util/strobj.h"

/// A host that has been found.
struct hostinfo {
  hostinfo(const char* host, const char* dotted) : name(host), address(dotted) {}

  tvStrobj name;     ///< as it was asked for
  tvStrobj address;  ///< dotted decimal
};

class SysLogUtils {
 public:
  /// Makes the cache; further calls do nothing.
  static void init();
  /// The first IPv4 address of `host`, dotted, or "???". The text lives as long as the process, and
  /// so does a found address: the host is not asked for again. A host that was not found is, each
  /// time, and each look-up may block.
  // NOLINTNEXTLINE(readability-identifier-naming): a public name
  [[nodiscard]] static const char* IPaddr(const char* host);
  /// The same.
  [[nodiscard]] static std::string_view addressOf(std::string_view host);

 private:
  struct NameHash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  using Hosts = std::unordered_map<std::string, hostinfo, NameHash, std::equal_to<>>;

  static Hosts& ipaddrs();
};
