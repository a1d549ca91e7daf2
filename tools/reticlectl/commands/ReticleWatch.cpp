#include "tools/reticlectl/commands/ReticleWatch.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

constexpr const char* CLEAR_SCREEN = "\x1B[2J";
constexpr const char* TO_TOP_LEFT = "\x1B[H";
constexpr const char* CLEAR_REST_OF_LINE = "\x1B[K";
constexpr const char* CLEAR_BELOW = "\x1B[J";

constexpr std::size_t MARK_COLUMNS = 2;

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Writes over what the terminal shows, line by line, so that nothing flickers; what would make it
/// scroll is left out and counted.
std::string overwriting(const std::string& picture, std::size_t rows) {
    std::vector<std::string> lines = linesOf(picture);
    // The cursor takes the last row.
    const std::size_t room = std::max<std::size_t>(rows, 2) - 1;
    if (lines.size() > room) {
        const std::string rest = "... " + std::to_string(lines.size() - room + 1) + " more";
        lines.resize(room - 1);
        lines.push_back(rest);
    }
    std::string written = TO_TOP_LEFT;
    for (const std::string& line : lines) {
        written += line + CLEAR_REST_OF_LINE + '\n';
    }
    return written + CLEAR_BELOW;
}

/// "21:05:09".
std::string timeOfDay() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::ostringstream text;
    text << std::put_time(::localtime_r(&now, &local), "%T");
    return text.str();
}

}  // namespace

void ReticleWatch::run() {
    using Clock = std::chrono::steady_clock;
    const auto interval = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(_intervalSeconds));
    if (_pictureSize()) {
        _session.out << CLEAR_SCREEN;
        _showWait(std::chrono::milliseconds::zero());
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
    constexpr int NOT_CANCELLED = -1;
    try {
        if (!_client) {
            _client = _session.connect(
                NOT_CANCELLED, [this](std::chrono::milliseconds passed) { _showWait(passed); });
        }
        reticle::Reply reply = _client->list();
        _changes = ListChanges::between((_reply ? *_reply : reply).reticles, reply.reticles);
        _reply = std::move(reply);
        _replyTime = timeOfDay();
        _problem.clear();
    } catch (const reticle::ClientError& error) {
        _client.reset();
        _problem = printable(error.what());
    }
    _wait.clear();
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

void ReticleWatch::_showWait(std::chrono::milliseconds passed) {
    if (_pictureSize()) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(passed).count();
        _wait = "Waiting for the list: " + std::to_string(seconds) + " of " +
                secondsText(_session.timeoutSeconds) + " s";
        _show();
        _session.out.flush();
    }
}

void ReticleWatch::_paint(const TerminalSize& size) const {
    std::string picture = _head(size.columns);
    if (_reply) {
        picture += _markedTable(size.columns);
    }
    _session.out << overwriting(picture, size.rows);
}

std::string ReticleWatch::_head(std::size_t columns) const {
    std::string head =
        wrapped("Every " + secondsText(_intervalSeconds) + " s: " + printable(_session.peer()) +
                    ", " + timeOfDay() + ", Ctrl-C ends",
                columns);
    if (_wait.empty() && _problem.empty()) {
        return head + (_changes.summary.empty() ? "" : wrapped(_changes.summary, columns));
    }
    head += wrapped(_wait.empty() ? "No list: " + _problem : _wait, columns);
    return head + (_reply ? wrapped("The last that came, at " + _replyTime + ":", columns) : "");
}

std::string ReticleWatch::_markedTable(std::size_t columns) const {
    TableStyle style = _session.tableStyle();
    style.width = std::max(columns, MARK_COLUMNS + 1) - MARK_COLUMNS;
    const std::string table = renderTable(_reply->reticles, style);
    if (_reply->reticles.empty()) {
        return wrapped(linesOf(table).front(), columns);
    }
    // Of the head line, and then of each reticle.
    std::string marks = " ";
    marks.append(_changes.marks.begin(), _changes.marks.end());
    std::string marked;
    for (const std::string& line : linesOf(table)) {
        marked += marks.front() + (' ' + line) + '\n';
        marks.erase(0, 1);
    }
    return marked;
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
