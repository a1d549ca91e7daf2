#include "simulator/web/RequestGuard.h"

#include <utility>

#include <asio/ip/address_v4.hpp>

namespace sim {

namespace {

constexpr const char* ANY_ADDRESS = "0.0.0.0";

bool isLoopback(const std::string& host) {
    return host == "127.0.0.1" || host == "localhost";
}

// The port may be another one where somebody passes connections on, as ssh does.
std::string hostOf(const HttpRequest& request) {
    const std::string host = request.header("host");
    return host.substr(0, host.rfind(':'));
}

bool isAddress(const std::string& text) {
    asio::error_code error;
    static_cast<void>(asio::ip::make_address_v4(text, error));
    return !error;
}

}  // namespace

RequestGuard::RequestGuard(std::string host, std::string token)
    : _host(std::move(host)), _token(std::move(token)) {}

bool RequestGuard::isForUs(const HttpRequest& request) const {
    // Who follows a link from elsewhere to the page itself does no harm.
    const std::string site = request.header("sec-fetch-site");
    const bool isFromElsewhere = !site.empty() && site != "same-origin" && site != "none";
    return _isOurHost(hostOf(request)) && (!isFromElsewhere || request.path == "/");
}

bool RequestGuard::isByThePage(const HttpRequest& request) const {
    // Who is no browser may write any host.
    return request.header(TOKEN_HEADER) == _token && isLoopback(hostOf(request)) &&
           _isThisMachine(request.peer);
}

/// Under an address nobody else's page is found, so that any is good where all are served.
bool RequestGuard::_isOurHost(const std::string& host) const {
    return isLoopback(host) || host == _host || (_host == ANY_ADDRESS && isAddress(host));
}

/// What is sent to an address of this machine comes from there.
bool RequestGuard::_isThisMachine(const std::string& peer) const {
    asio::error_code error;
    const asio::ip::address_v4 address = asio::ip::make_address_v4(peer, error);
    return !error && (address.is_loopback() || peer == _host);
}

}  // namespace sim
