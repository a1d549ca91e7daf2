#pragma once

#include <cstdint>
#include <string>

namespace sim {

/// Where the page is served.
struct WebAddress {
    std::string host = "127.0.0.1";  ///< an IPv4 address
    std::uint16_t port = 0;          ///< 0 for any free one
};

/// Reads [ADDRESS:]PORT.
/// \throws std::invalid_argument that says what is wrong with `text`.
[[nodiscard]] WebAddress parseWebAddress(const std::string& text);

}  // namespace sim
