/// A name service that asks for each name and each address once, and remembers the answer, above
/// all that there is none. The daemon asks again with every event, and waits as long as the
/// system's resolver does; over a log with a million lines of one unknown host a tool can not. What
/// it remembers is bounded: with too many answers it begins anew.
#pragma once

#include <unordered_map>

#include "util/resolver.h"

namespace zem::fmt {

class NameMemory final : public util::Resolver {
 public:
  static constexpr std::size_t kAnswersMax = 8192;  ///< of each kind

  /// `service` is asked, and outlives this.
  explicit NameMemory(util::Resolver& service) : service_(service) {}

  std::optional<in_addr> address_of(const std::string& host) override;
  std::optional<std::string> name_of(in_addr address) override;
  util::Result<std::string> local_host_name(std::size_t size) override;

 private:
  util::Resolver& service_;
  std::unordered_map<std::string, std::optional<in_addr>> addresses_;
  std::unordered_map<in_addr_t, std::optional<std::string>> names_;
};

}  // namespace zem::fmt
