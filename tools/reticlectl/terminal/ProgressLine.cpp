#include "tools/reticlectl/terminal/ProgressLine.h"

#include <algorithm>
#include <sstream>

namespace reticlectl {

namespace {

constexpr std::size_t KB = 1024;
constexpr std::size_t LARGEST_UNTOLD_BYTES = 256 * KB;
constexpr std::size_t PERCENT = 100;

}  // namespace

ProgressLine::~ProgressLine() {
    end();
}

void ProgressLine::showUpload(std::size_t sentBytes, std::size_t totalBytes) {
    if (totalBytes <= LARGEST_UNTOLD_BYTES) {
        return;
    }
    _isWait = false;
    _show("sending: " + std::to_string(sentBytes / KB) + " of " + std::to_string(totalBytes / KB) +
          " KB (" + std::to_string(sentBytes * PERCENT / totalBytes) + " %)");
    if (sentBytes == totalBytes) {
        end();
    }
}

void ProgressLine::showWait(std::chrono::milliseconds passed) {
    _isWait = true;
    std::ostringstream text;
    text << "waiting for " << _peer << ": "
         << std::chrono::floor<std::chrono::seconds>(passed).count() << " of " << _timeoutSeconds
         << " s";
    _show(text.str());
}

void ProgressLine::end() {
    if (_shownBytes == 0) {
        return;
    }
    if (_isWait) {
        _err << '\r' << std::string(_shownBytes, ' ') << '\r' << std::flush;
    } else {
        _err << std::endl;
    }
    _shownBytes = 0;
}

void ProgressLine::_show(const std::string& text) {
    const std::size_t uncovered = _shownBytes - std::min(_shownBytes, text.size());
    _err << '\r' << text << std::string(uncovered, ' ') << std::flush;
    _shownBytes = text.size() + uncovered;
}

}  // namespace reticlectl
