/// IPv4 addresses with ports as people write them: "127.0.0.1:5529".
#pragma once

#include <netinet/in.h>

#include <optional>
#include <string>
#include <string_view>

namespace zem::receiver {

/// Nothing unless `text` is a dotted address, a colon and a port from 0 to 65535.
[[nodiscard]] std::optional<sockaddr_in> parse_endpoint(std::string_view text);
[[nodiscard]] std::string endpoint_text(const sockaddr_in& endpoint);

}  // namespace zem::receiver
