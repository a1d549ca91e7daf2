#pragma once

#include <json/json.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "client/Mistake.h"
#include "tools/reticlectl/commands/PingStatistics.h"
#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/trace/RequestCheck.h"

namespace reticlectl {

/// What a trace prints, a line for each event as it happens: for people, or with --json an object
/// with all texts. Counts what it has printed. Nothing of it can steer a terminal.
class TraceLog {
public:
    /// \param session must outlive this object.
    explicit TraceLog(const Session& session) : _session(session) {}

    void listening(const std::string& address) const;

    /// \return the number that the connection is told by.
    [[nodiscard]] std::size_t connected(const std::string& peer);

    void request(std::size_t connection, const RequestCheck& check, std::string_view body,
                 bool isPassedOn);

    /// Bytes that make no frame.
    void noFrame(std::size_t connection, std::string_view bytes) const;

    /// \param time since its request; none where it answers none that is known.
    void reply(std::size_t connection, std::uint32_t size, const std::string& text,
               std::optional<Milliseconds> time);

    void remark(std::size_t connection, const reticle::Mistake& mistake);

    void closed(std::size_t connection, const std::string& by) const;

    /// How much there was of all this.
    void sum() const;

private:
    void _print(std::size_t connection, const std::string& line, Json::Value event) const;

    const Session& _session;
    std::size_t _connections = 0;
    std::size_t _requests = 0;
    std::size_t _replies = 0;
    std::size_t _remarks = 0;
    std::size_t _heldBack = 0;
};

}  // namespace reticlectl
