#include "tests/soak/LogReader.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::string_view REQUEST = "PacketsHandler::_handlerRoutine, json req: ";
constexpr std::string_view NUMBER = R"({"soak":)";
constexpr std::string_view FAILURE = "_handlerRoutine, exception: ";
constexpr std::string_view READY = "handleJsReq, response: ";
constexpr std::string_view SENDING = "responseThread: msg to send = ";
constexpr std::string_view UNDELIVERABLE = "Error during send response for socket: ";
constexpr std::string_view REFUSED_HEADER = "Failed to retrieve packet length";
constexpr std::string_view REFUSED_BODY = "Error: received packet isn't json";
constexpr std::string_view OTHER_EXCEPTION = "exception: ";

constexpr std::string_view LONG_TEXT_BEGINS = "{";
constexpr std::string_view LONG_TEXT_ENDS = "}";

std::string after(std::string_view prefix, const std::string& line) {
    return line.substr(prefix.size());
}

}  // namespace

LogReader::LogReader(FileDescriptor pipe, Ledger& ledger)
    : _pipe(std::move(pipe)), _ledger(ledger), _thread([this] { _read(); }) {}

void LogReader::_read() {
    constexpr std::size_t PIECE_BYTES = 65536;
    std::array<char, PIECE_BYTES> piece{};
    std::string line;
    for (ssize_t count = 0; (count = read(_pipe.get(), piece.data(), piece.size())) > 0;) {
        std::string_view rest(piece.data(), static_cast<std::size_t>(count));
        for (std::size_t end = 0; (end = rest.find('\n')) != std::string_view::npos;) {
            _handle(line.append(rest.substr(0, end)));
            line.clear();
            rest.remove_prefix(end + 1);
        }
        line.append(rest);
    }
}

void LogReader::_handle(const std::string& line) {
    if (_textEntry != nullptr) {
        _text.append("\n").append(line);
        if (line == LONG_TEXT_ENDS) {
            (_ledger.*std::exchange(_textEntry, nullptr))(_text);
        }
    } else if (line.starts_with(REQUEST)) {
        _enterRequest(after(REQUEST, line));
    } else if (line.starts_with(READY)) {
        _beginText(&Ledger::ready, after(READY, line));
    } else if (line.starts_with(SENDING)) {
        _beginText(&Ledger::sending, after(SENDING, line));
    } else if (line.starts_with(FAILURE)) {
        _ledger.failed(after(FAILURE, line));
    } else if (line.starts_with(UNDELIVERABLE)) {
        _ledger.undeliverable();
    } else if (line == REFUSED_HEADER) {
        _ledger.headerRefused();
    } else if (line == REFUSED_BODY) {
        _ledger.bodyRefused();
    } else if (line.find(OTHER_EXCEPTION) != std::string::npos &&
               line.find(NUMBER) == std::string::npos) {
        _ledger.surprise(line);
    }
}

void LogReader::_beginText(void (Ledger::*entry)(const std::string&),
                           const std::string& firstLine) {
    if (firstLine != LONG_TEXT_BEGINS) {
        (_ledger.*entry)(firstLine);
        return;
    }
    _textEntry = entry;
    _text = firstLine;
}

void LogReader::_enterRequest(const std::string& text) {
    if (!text.starts_with(NUMBER)) {
        _ledger.surprise("a request that no client sent: " + text);
        return;
    }
    _ledger.taken(std::strtoull(text.c_str() + NUMBER.size(), nullptr, 10));
}
