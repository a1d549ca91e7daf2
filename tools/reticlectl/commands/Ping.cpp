#include "tools/reticlectl/commands/Ping.h"

#include <algorithm>
#include <chrono>

#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

ExitStatus Ping::run() {
    const auto interval = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(_intervalSeconds));
    const auto start = Clock::now();
    if (!_session.wantsJson) {
        _session.out << "PING " << printable(_session.peer()) << ": list requests" << std::endl;
    }
    auto next = start;
    do {
        next = std::max(next + interval, Clock::now());
        _sendOne();
    } while (!_isDone() && !_interrupt.waitFor(next - Clock::now()));
    _printSummary(Clock::now() - start);
    return _statistics.received() > 0 ? ExitStatus::DONE : _lastLoss;
}

bool Ping::_isDone() const {
    return !_session.out || (_count > 0 && _statistics.transmitted() == _count);
}

void Ping::_sendOne() {
    try {
        _exchange();
    } catch (const reticle::Cancelled&) {
        _statistics.addLoss();
    } catch (const reticle::CannotConnect& error) {
        _noteLoss(ExitStatus::CANNOT_CONNECT, error.what());
    } catch (const reticle::MalformedReply& error) {
        _noteLoss(ExitStatus::MALFORMED_REPLY, error.what());
    } catch (const reticle::ClientError& error) {
        _noteLoss(ExitStatus::NO_REPLY, error.what());
    }
}

void Ping::_exchange() {
    if (!_client) {
        _client =
            _session.connect(_interrupt.descriptor(), [this](std::chrono::milliseconds passed) {
                if (_progress) {
                    _progress->showWait(passed);
                }
            });
    }
    const auto start = Clock::now();
    std::size_t bytes = 0;
    try {
        bytes = _client->list().json.size();
    } catch (const reticle::Refused& refusal) {
        bytes = refusal.reply().json.size();
    }
    _noteAnswer(bytes, Clock::now() - start);
}

void Ping::_noteAnswer(std::size_t bytes, Milliseconds roundTrip) {
    _statistics.addAnswer(roundTrip);
    _endProgress();
    if (!_session.wantsJson) {
        _session.out << bytes << " bytes from " << printable(_session.peer())
                     << ": seq=" << _statistics.transmitted()
                     << " time=" << millisecondsText(roundTrip) << " ms" << std::endl;
    }
}

void Ping::_noteLoss(ExitStatus status, const std::string& problem) {
    _client.reset();
    _lastLoss = status;
    _statistics.addLoss();
    _endProgress();
    _session.err << "reticlectl: seq=" << _statistics.transmitted() << ": " << printable(problem)
                 << std::endl;
}

void Ping::_endProgress() const {
    if (_progress) {
        _progress->end();
    }
}

void Ping::_printSummary(Milliseconds elapsed) const {
    _endProgress();
    const std::string peer = printable(_session.peer());
    if (_session.wantsJson) {
        _session.out << _statistics.json(peer, elapsed) << '\n';
    } else {
        _session.out << '\n' << _statistics.text(peer, elapsed);
    }
}

}  // namespace reticlectl
