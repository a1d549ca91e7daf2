#include "tools/reticlectl/commands/ReticleWatch.h"

#include <chrono>
#include <sstream>
#include <thread>

#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

constexpr const char* CLEAR_SCREEN = "\x1B[2J";
constexpr const char* TO_TOP_LEFT = "\x1B[H";
constexpr const char* CLEAR_REST_OF_LINE = "\x1B[K";
constexpr const char* CLEAR_BELOW = "\x1B[J";

/// Writes over what the terminal shows, line by line, so that nothing flickers; what would make it
/// scroll is left out.
std::string overwriting(const std::string& picture, std::size_t rows) {
    std::istringstream lines(picture);
    std::string written = TO_TOP_LEFT;
    std::string line;
    for (std::size_t row = 1; row < rows && std::getline(lines, line); ++row) {
        written += line + CLEAR_REST_OF_LINE + '\n';
    }
    return written + CLEAR_BELOW;
}

}  // namespace

void ReticleWatch::run() {
    using Clock = std::chrono::steady_clock;
    const auto interval = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(_intervalSeconds));
    if (_pictureSize()) {
        _session.out << CLEAR_SCREEN;
    }
    while (true) {
        const auto next = Clock::now() + interval;
        _refresh();
        _show();
        if (!_session.out.flush()) {
            throw Failure(ExitStatus::USAGE, "cannot write the output: check where it goes");
        }
        std::this_thread::sleep_until(next);
    }
}

void ReticleWatch::_refresh() {
    _problem.clear();
    try {
        if (!_client) {
            _client = _session.connect();
        }
        _reply = _client->list();
    } catch (const reticle::ClientError& error) {
        _client.reset();
        _problem = printable(error.what());
    }
}

std::optional<TerminalSize> ReticleWatch::_pictureSize() const {
    return _session.wantsJson ? std::nullopt : _session.terminal.size();
}

void ReticleWatch::_show() {
    if (const auto size = _pictureSize()) {
        _paint(*size);
    } else {
        _append();
    }
}

void ReticleWatch::_paint(const TerminalSize& size) const {
    const std::string head = "Every " + secondsText(_intervalSeconds) +
                             " s: " + printable(_session.peer()) + ", Ctrl-C ends";
    std::string picture = shortened(head, size.columns) + '\n';
    if (!_problem.empty()) {
        picture += shortened("No list: " + _problem, size.columns) + '\n';
    }
    if (!_problem.empty() && _reply) {
        picture += shortened("The last that came:", size.columns) + '\n';
    }
    picture += '\n';
    if (_reply) {
        picture += renderTable(_reply->reticles, _session.tableStyle());
    }
    _session.out << overwriting(picture, size.rows);
}

void ReticleWatch::_append() {
    if (!_problem.empty()) {
        _session.err << "reticlectl: " << _problem << std::endl;
        return;
    }
    if (_hasShownList && !_session.wantsJson) {
        _session.out << '\n';
    }
    _session.print(*_reply);
    _hasShownList = true;
}

}  // namespace reticlectl
