#include "simulator/log/LogReader.h"

#include <algorithm>
#include <array>
#include <regex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "simulator/link/RequestSplitter.h"

namespace sim {

namespace {

using Kind = LogRecord::Kind;

struct Message {
    std::string_view start;
    std::optional<Kind> kind;  ///< none for what tells nothing of use
};

/// Messages with texts that may take several lines, and the one with a path.
constexpr std::array<Message, 8> PROGRESS{
    {{"PacketsHandler::_handlerRoutine, json req: ", Kind::CLIENT_REQUEST},
     {"handleJsReq, rtos request: ", Kind::RTOS_REQUEST},
     {"send_and_get: recv json: ", Kind::RTOS_ANSWER},
     {"_getReticleData: reticle file path: ", Kind::RETICLE_FILE},
     {"handleJsReq, response: ", Kind::REPLY},
     {"buildmsg: ", std::nullopt},
     {"handleJsReq: rtos response: ", std::nullopt},
     {"responseThread: msg to send = ", std::nullopt}}};

/// The error stream; every message takes one line.
constexpr std::array<Message, 11> ERRORS{
    {{"_handlerRoutine, exception: ", Kind::FAILURE},
     {"Connection reset by peer: Connection reset by peer", Kind::RESET_LINK},
     {"json value: ", std::nullopt},
     {"Wrong json key", std::nullopt},
     {"Error: ", std::nullopt},
     {"Error during send response for socket: ", std::nullopt},
     {"Failed to retrieve packet length", std::nullopt},
     {"Exceeded stackLimit in readValue().", std::nullopt},
     {"_clientRoutine, exception: ", std::nullopt},
     {"_serverRoutine, exception: ", std::nullopt},
     {"responseThread, exception: ", std::nullopt}}};

template <std::size_t Size>
const Message* findMessage(const std::array<Message, Size>& messages, std::string_view line) {
    const auto* const found =
        std::find_if(messages.begin(), messages.end(),
                     [line](const Message& message) { return line.starts_with(message.start); });
    return found == messages.end() ? nullptr : found;
}

/// Whether `line` is the system's text for an error, which is written twice: "TEXT: TEXT".
bool isSystemError(std::string_view line) {
    constexpr std::string_view SEPARATOR = ": ";
    const std::size_t size = (line.size() - std::min(line.size(), SEPARATOR.size())) / 2;
    return size > 0 && line.substr(size, SEPARATOR.size()) == SEPARATOR &&
           line.substr(0, size) == line.substr(size + SEPARATOR.size());
}

/// `line` without "Nov 21 11:22:32 HOST PROGRAM[PID]: ".
std::string withoutJournalPrefix(std::string line) {
    // The expression must not be let loose on megabytes of reticle data.
    constexpr std::size_t MAX_PREFIX_BYTES = 256;
    static const std::regex PREFIX(
        "^[A-Z][a-z]{2} [ 0-3][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2} [^ ]+ [^ :]+\\[[0-9]+\\]: ");
    const std::string start = line.substr(0, MAX_PREFIX_BYTES);
    std::smatch prefix;
    if (std::regex_search(start, prefix, PREFIX, std::regex_constants::match_continuous)) {
        line.erase(0, static_cast<std::size_t>(prefix.length()));
    }
    return line;
}

/// Whether `line` ends as texts do that --log-bytes has cut: " ... (M bytes)".
bool isCut(std::string_view line) {
    constexpr std::string_view START = " ... (";
    constexpr std::string_view END = " bytes)";
    const std::size_t start = line.rfind(START);
    if (start == std::string_view::npos || !line.ends_with(END)) {
        return false;
    }
    const std::string_view size = line.substr(start + START.size());
    return size.find_first_not_of("0123456789") == size.size() - END.size();
}

}  // namespace

std::optional<LogRecord> LogReader::next() {
    for (;;) {
        if (!_errors.empty()) {
            LogRecord error = std::move(_errors.front());
            _errors.pop();
            return error;
        }
        if (!_readLine()) {
            return std::nullopt;
        }
        const Message* const message = findMessage(PROGRESS, _line);
        if (message == nullptr) {
            _takeError();
        } else if (message->kind) {
            LogRecord record{*message->kind, _lineNumber, _line.substr(message->start.size())};
            if (record.kind == Kind::RETICLE_FILE || _completeText(record)) {
                return record;
            }
        }
    }
}

bool LogReader::_readLine() {
    if (std::exchange(_isLineUnread, false)) {
        return true;
    }
    if (!std::getline(_log, _line)) {
        return false;
    }
    ++_lineNumber;
    if (isCut(_line)) {
        throw std::runtime_error("line " + std::to_string(_lineNumber) +
                                 " is cut: a session needs a log written without --log-bytes");
    }
    _line = withoutJournalPrefix(std::move(_line));
    return true;
}

void LogReader::_takeError() {
    const Message* const message = findMessage(ERRORS, _line);
    if (message != nullptr && message->kind) {
        _errors.push({*message->kind, _lineNumber, _line.substr(message->start.size())});
    }
}

bool LogReader::_completeText(LogRecord& record) {
    RequestSplitter brackets;
    brackets.feed(record.text + '\n');
    while (!brackets.next()) {
        if (!_readLine()) {
            return false;
        }
        if (findMessage(PROGRESS, _line) != nullptr) {
            _isLineUnread = true;
            return false;
        }
        if (findMessage(ERRORS, _line) != nullptr || isSystemError(_line)) {
            _takeError();
            continue;
        }
        brackets.feed(_line + '\n');
        record.text += '\n' + _line;
    }
    return true;
}

}  // namespace sim
