#include "tools/receiver/endpoint.h"

#include <arpa/inet.h>

#include <array>
#include <charconv>

namespace zem::receiver {

std::optional<sockaddr_in> parse_endpoint(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string address(text.substr(0, colon));
  const std::string_view digits = text.substr(colon + 1);
  in_port_t port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  sockaddr_in endpoint{};
  endpoint.sin_family = AF_INET;
  endpoint.sin_port = htons(port);
  if (::inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr) != 1) return std::nullopt;
  return endpoint;
}

std::string endpoint_text(const sockaddr_in& endpoint) {
  std::array<char, INET_ADDRSTRLEN> dotted{};
  ::inet_ntop(AF_INET, &endpoint.sin_addr, dotted.data(), dotted.size());
  return std::string(dotted.data()) + ":" + std::to_string(ntohs(endpoint.sin_port));
}

}  // namespace zem::receiver
