#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "tools/reticlectl/commands/PingStatistics.h"
#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/terminal/InterruptSignal.h"

namespace reticlectl {

/// Asks the service for its list, again and again, and tells how long each answer took. Nothing on
/// the device changes. Connecting is not part of a round trip.
class Ping {
public:
    /// \param session must outlive this object.
    /// \param count how many requests, 0 for as many as until Ctrl-C.
    /// \param intervalSeconds from one request to the next; a later answer puts the next one off.
    Ping(const Session& session, std::size_t count, double intervalSeconds)
        : _session(session),
          _count(count),
          _intervalSeconds(intervalSeconds),
          _progress(session.progressLine()) {}

    /// Prints each answer, and the statistics at the end or at Ctrl-C. \return DONE when there was
    /// an answer, a refusal by the device included, else why the last request had none.
    [[nodiscard]] ExitStatus run();

private:
    [[nodiscard]] bool _isDone() const;
    void _sendOne();
    void _exchange();
    void _noteAnswer(std::size_t bytes, Milliseconds roundTrip);
    void _noteLoss(ExitStatus status, const std::string& problem);
    /// Before anything else is shown.
    void _endProgress() const;
    void _printSummary(Milliseconds elapsed) const;

    const Session& _session;
    std::size_t _count;
    double _intervalSeconds;
    InterruptSignal _interrupt;
    PingStatistics _statistics;
    // Null where standard error is no terminal.
    std::shared_ptr<ProgressLine> _progress;
    // Empty before the first request and after one that was lost.
    std::optional<reticle::ReticleClient> _client;
    ExitStatus _lastLoss = ExitStatus::NO_REPLY;
};

}  // namespace reticlectl
