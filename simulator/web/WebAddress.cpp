#include "simulator/web/WebAddress.h"

#include <stdexcept>
#include <string_view>

#include <asio/ip/address_v4.hpp>

#include "simulator/base/numberIn.h"

namespace sim {

namespace {

std::uint16_t parsePort(std::string_view text) {
    const auto port = numberIn<std::uint16_t>(text);
    if (!port) {
        throw std::invalid_argument("\"" + std::string(text) +
                                    "\" is not a port, a number from 0 to 65535");
    }
    return *port;
}

}  // namespace

WebAddress parseWebAddress(const std::string& text) {
    WebAddress address;
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) {
        address.port = parsePort(text);
        return address;
    }
    address.host = text.substr(0, colon);
    asio::error_code error;
    static_cast<void>(asio::ip::make_address_v4(address.host, error));
    if (error) {
        throw std::invalid_argument("\"" + address.host +
                                    "\" is not an IPv4 address such as 127.0.0.1");
    }
    address.port = parsePort(std::string_view(text).substr(colon + 1));
    return address;
}

}  // namespace sim
