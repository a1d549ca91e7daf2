#pragma once

#include <json/json.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "reticle-client/ReticleClient.h"
#include "tools/reticlectl/table/ReticleTable.h"
#include "tools/reticlectl/terminal/ProgressLine.h"
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

    using Call = std::function<reticle::Reply(reticle::ReticleClient&)>;

    /// The list of the device.
    /// \throws reticle::ClientError.
    [[nodiscard]] reticle::Reply list() const;

    /// Carries out a change and prints the list after it. Ctrl-C ends it as a failure, which says
    /// that what was under way may be done.
    /// \param items an array of what is changed, a name or an index each.
    /// \throws reticle::ClientError; PartialChange where one of several items was sent and failed.
    void change(const Json::Value& items, const Call& call) const;

    /// \param cancelDescriptor and `waitListener` see ReticleClient.
    /// \throws reticle::CannotConnect.
    [[nodiscard]] reticle::ReticleClient connect(
        int cancelDescriptor = -1, reticle::ReticleClient::WaitListener waitListener = {}) const;

    /// A line for what a call is at; null where standard error is no terminal.
    [[nodiscard]] std::shared_ptr<ProgressLine> progressLine() const;

    /// "HOST:PORT" of the service.
    [[nodiscard]] std::string peer() const;

    /// How tables are to look at this moment: as the options and the terminal have it.
    [[nodiscard]] TableStyle tableStyle() const;

    /// Prints what the device answered: the table of its reticles, or the JSON.
    void print(const reticle::Reply& reply) const;

    /// A line on standard error that is no failure. \param text any.
    void note(const std::string& text) const;

private:
    [[nodiscard]] reticle::Reply _ask(const Call& call, int cancelDescriptor) const;
};

}  // namespace reticlectl
