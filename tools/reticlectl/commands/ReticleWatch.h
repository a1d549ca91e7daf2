#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/table/ListChanges.h"

namespace reticlectl {

/// Shows the list again and again: on a terminal as a picture that stays in its place, elsewhere as
/// one list below the other. A service that is lost is reported and asked again.
class ReticleWatch {
public:
    /// \param session must outlive this object.
    /// \param intervalSeconds from one request to the next.
    ReticleWatch(const Session& session, double intervalSeconds)
        : _session(session), _intervalSeconds(intervalSeconds) {}

    /// Until a signal ends the process.
    /// \throws Failure (USAGE) when the output cannot be written.
    [[noreturn]] void run();

private:
    // Nothing where lists follow one another.
    [[nodiscard]] std::optional<TerminalSize> _pictureSize() const;
    void _refresh();
    void _showWait(std::chrono::milliseconds passed);
    void _show();
    void _paint(const TerminalSize& size) const;
    [[nodiscard]] std::string _head(std::size_t columns) const;
    [[nodiscard]] std::string _markedTable(std::size_t columns) const;
    void _append();

    const Session& _session;
    double _intervalSeconds;
    // Empty before the first answer and when the service is lost.
    std::optional<reticle::ReticleClient> _client;
    // The last that came, when, and what it has changed.
    std::optional<reticle::Reply> _reply;
    std::string _replyTime;
    ListChanges _changes;
    // Why the last request has brought no list; empty when it has.
    std::string _problem;
    // What the request under way waits for, once that is worth telling.
    std::string _wait;
    bool _hasShownList = false;
};

}  // namespace reticlectl
