#include "simulator/link/RequestSplitter.h"

#include <algorithm>

namespace sim {

namespace {

constexpr const char* BLANKS = " \t\r\n";
/// Of one text.
constexpr std::size_t KEPT_BYTES = RequestSplitter::MAX_REQUEST_BYTES + 1;

bool isOpening(char character) {
    return character == '[' || character == '{';
}

bool isClosing(char character) {
    return character == ']' || character == '}';
}

}  // namespace

void RequestSplitter::feed(std::string_view bytes) {
    _pending += bytes;
}

std::optional<std::string> RequestSplitter::next() {
    if (_scanned == 0) {
        _skipBlanks();
        if (!_pending.empty() && !isOpening(_pending.front())) {
            return _cut(_pending.size());
        }
    }
    while (_scanned < _pending.size()) {
        if (_endsTextWith(_pending[_scanned++])) {
            return _cut(_scanned);
        }
    }
    _scanned = std::min(_scanned, KEPT_BYTES);
    _pending.resize(_scanned);
    return std::nullopt;
}

bool RequestSplitter::_endsTextWith(char character) {
    if (_isInString) {
        _isInString = _isEscaped || character != '"';
        _isEscaped = !_isEscaped && character == '\\';
        return false;
    }
    _isInString = character == '"';
    if (isOpening(character)) {
        ++_depth;
    } else if (isClosing(character)) {
        --_depth;
        return _depth == 0;
    }
    return false;
}

std::string RequestSplitter::_cut(std::size_t size) {
    std::string text = _pending.substr(0, std::min(size, KEPT_BYTES));
    _pending.erase(0, size);
    _scanned = 0;
    return text;
}

void RequestSplitter::_skipBlanks() {
    _pending.erase(0, std::min(_pending.find_first_not_of(BLANKS), _pending.size()));
}

}  // namespace sim
