#pragma once

#include <chrono>
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

#include "client/ReticleClient.h"

namespace reticlectl {

/// What every command works with: the streams and the options that all commands share.
struct Session {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;

    std::string host = "127.0.0.1";
    std::uint16_t port = reticle::ReticleClient::DEFAULT_PORT;
    double timeoutSeconds = 10;
    /// Print the reply's JSON instead of a table.
    bool wantsJson = false;

    /// \throws reticle::CannotConnect.
    [[nodiscard]] reticle::ReticleClient connect() const;

    /// Prints what the device answered: the table of its reticles, or the JSON.
    void print(const reticle::Reply& reply) const;
};

}  // namespace reticlectl
