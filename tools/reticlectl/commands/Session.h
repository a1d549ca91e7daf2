#pragma once

#include <chrono>
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

#include "reticle-client/ReticleClient.h"
#include "tools/reticlectl/table/ReticleTable.h"
#include "tools/reticlectl/terminal/Terminal.h"

namespace reticlectl {

/// What every command works with: the streams and the options that all commands share.
struct Session {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    Terminal terminal;

    std::string host = "127.0.0.1";
    std::uint16_t port = reticle::ReticleClient::DEFAULT_PORT;
    double timeoutSeconds = 10;
    /// "auto", "always" or "never".
    std::string color = "auto";
    /// Print the reply's JSON instead of a table.
    bool wantsJson = false;

    /// The connection tells the progress of long uploads where standard error is a terminal.
    /// \param cancelDescriptor see ReticleClient.
    /// \throws reticle::CannotConnect.
    [[nodiscard]] reticle::ReticleClient connect(int cancelDescriptor = -1) const;

    /// "HOST:PORT" of the service.
    [[nodiscard]] std::string peer() const;

    /// How tables are to look at this moment: as the options and the terminal have it.
    [[nodiscard]] TableStyle tableStyle() const;

    /// Prints what the device answered: the table of its reticles, or the JSON.
    void print(const reticle::Reply& reply) const;
};

}  // namespace reticlectl
