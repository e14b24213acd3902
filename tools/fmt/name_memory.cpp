#include "tools/fmt/name_memory.h"

namespace zem::fmt {
namespace {

/// The answer in `known`, or that of `ask`, which is kept there.
template <class Known, class Key, class Ask>
auto remembered(Known& known, const Key& key, Ask ask) {
  if (const auto found = known.find(key); found != known.end()) return found->second;
  if (known.size() == NameMemory::kAnswersMax) known.clear();
  return known.emplace(key, ask()).first->second;
}

}  // namespace

std::optional<in_addr> NameMemory::address_of(const std::string& host) {
  return remembered(addresses_, host, [&] { return service_.address_of(host); });
}

std::optional<std::string> NameMemory::name_of(in_addr address) {
  return remembered(names_, address.s_addr, [&] { return service_.name_of(address); });
}

util::Result<std::string> NameMemory::local_host_name(std::size_t size) {
  return service_.local_host_name(size);
}

}  // namespace zem::fmt
