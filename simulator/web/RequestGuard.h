#pragma once

#include <string>

#include "simulator/web/HttpMessages.h"

namespace sim {

/// Keeps other people's pages from using a reader's browser to reach the simulator.
class RequestGuard {
public:
    /// What the page sends with each request that changes something.
    static constexpr const char* TOKEN_HEADER = "x-rtos-sim-token";

    /// \param host the address that is served, an IPv4 address
    /// \param token the page's own; no other page can read it
    RequestGuard(std::string host, std::string token);

    /// Whether the page may be asked for that: under an address of this machine, not under a name
    /// that somebody has lead here, and by no other page.
    [[nodiscard]] bool isForUs(const HttpRequest& request) const;

    /// Whether a change is asked by the page itself, under a name of this machine and from this machine: whoever
    /// looks from elsewhere may only look.
    [[nodiscard]] bool isByThePage(const HttpRequest& request) const;

private:
    [[nodiscard]] bool _isOurHost(const std::string& host) const;
    [[nodiscard]] bool _isThisMachine(const std::string& peer) const;

    std::string _host;
    std::string _token;
};

}  // namespace sim
