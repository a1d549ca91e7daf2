#include "tests/soak/Conversation.h"

#include <stdexcept>
#include <utility>

#include "client/FrameFormat.h"

namespace {

constexpr std::chrono::milliseconds LOOK_INTERVAL{50};
constexpr std::chrono::seconds GIVE_UP_UNTAKEN{5};

}  // namespace

std::string Conversation::frame(const std::string& members, Ledger::Expectation expectation) {
    _lastRequest = _ledger.announce(_number, std::move(expectation));
    const std::string body = R"({"soak":)" + std::to_string(_lastRequest) + "," + members + "}";
    return reticle::encodeFrame(body);
}

std::optional<std::string> Conversation::ask(const std::string& members,
                                             Ledger::Expectation expectation) {
    _client.sendBytes(frame(members, std::move(expectation)));
    return waitForReply();
}

std::optional<std::string> Conversation::waitForReply() {
    const auto start = Ledger::Clock::now();
    for (;;) {
        std::optional<std::string> reply = read(LOOK_INTERVAL);
        const auto waited = Ledger::Clock::now() - start;
        if (reply || _ledger.isWithoutReply(_lastRequest) || waited > PATIENCE ||
            (waited > GIVE_UP_UNTAKEN && !_ledger.isTaken(_lastRequest))) {
            return reply;
        }
    }
}

std::optional<std::string> Conversation::read(std::chrono::milliseconds bound) {
    using reticle::FRAME_HEADER_BYTES;
    if (!_fill(FRAME_HEADER_BYTES, bound) ||
        !_fill(FRAME_HEADER_BYTES + reticle::announcedBodyBytes(_arrived), bound)) {
        return std::nullopt;
    }
    std::string reply = _arrived.substr(FRAME_HEADER_BYTES);
    _arrived.clear();
    _ledger.received(_number, reply);
    return reply;
}

bool Conversation::_fill(std::size_t size, std::chrono::milliseconds bound) {
    if (_arrived.size() < size) {
        _arrived += _client.connection().receive(size - _arrived.size(), bound);
    }
    return _arrived.size() >= size;
}

void Conversation::finish() {
    _client.connection().closeWriting();
    if (!_client.connection().seesEnd()) {
        throw std::runtime_error("the service does not end a connection that has ended");
    }
    _ledger.left(_number, Ledger::Departure::FINISHED);
}

void Conversation::reset() {
    _ledger.left(_number, Ledger::Departure::ABRUPT);
    _client.connection().reset();
}

void Conversation::close() {
    _ledger.left(_number, Ledger::Departure::ABRUPT);
    _client.connection().close();
}
