#include "tests/soak/Ledger.h"

#include <utility>

namespace {

void add(Ledger::Range& sum, const Ledger::Range& range) {
    sum.least += range.least;
    sum.most += range.most;
}

}  // namespace

Ledger::ConnectionNumber Ledger::connect() {
    const std::lock_guard lock(_mutex);
    _contents.connections.emplace_back();
    return _contents.connections.size() - 1;
}

Ledger::RequestNumber Ledger::announce(ConnectionNumber connection, Expectation expectation) {
    const std::lock_guard lock(_mutex);
    Request request;
    request.connection = connection;
    request.sent = Clock::now();
    request.expectation = std::move(expectation);
    _contents.requests.push_back(std::move(request));
    return _contents.requests.size() - 1;
}

void Ledger::received(ConnectionNumber connection, const std::string& reply) {
    const std::size_t value = hash(reply);
    const std::lock_guard lock(_mutex);
    _contents.connections.at(connection).received.push_back(value);
}

void Ledger::left(ConnectionNumber connection, Departure departure) {
    const std::lock_guard lock(_mutex);
    _contents.connections.at(connection).departure = departure;
    _contents.connections.at(connection).ended = Clock::now();
}

void Ledger::expectRefusals(Range headers, Range bodies) {
    const std::lock_guard lock(_mutex);
    add(_contents.expectedHeaderRefusals, headers);
    add(_contents.expectedBodyRefusals, bodies);
}

void Ledger::taken(RequestNumber request) {
    const std::lock_guard lock(_mutex);
    if (request >= _contents.requests.size() || _contents.requests[request].taken) {
        _contents.surprises.push_back("request taken that was not sent, or taken twice: " +
                                      std::to_string(request));
        return;
    }
    if (_current) {
        _contents.surprises.push_back("neither reply nor error of request " +
                                      std::to_string(*_current));
    }
    _current = request;
    _contents.requests[request].taken = Clock::now();
    _contents.requests[request].state = State::TAKEN;
}

void Ledger::failed(const std::string& reason) {
    const std::lock_guard lock(_mutex);
    ++_contents.failures[reason];
    if (!_current) {
        _contents.surprises.push_back("an error without a request: " + reason);
        return;
    }
    _contents.requests[*_current].state = State::FAILED;
    _current.reset();
}

void Ledger::ready(const std::string& reply) {
    const std::lock_guard lock(_mutex);
    if (!_current) {
        _contents.surprises.push_back("a reply without a request: " + reply);
        return;
    }
    Request& request = _contents.requests[*_current];
    if (request.expectation && !request.expectation(reply)) {
        _contents.surprises.push_back("request " + std::to_string(*_current) +
                                      " cannot have this reply: " + reply);
    }
    request.state = State::READY;
    request.replyHash = hash(reply);
    _ready.push_back(*_current);
    _current.reset();
}

// Strictly in order: the harness sees to it that fewer replies wait than the queue holds.
void Ledger::sending(const std::string& reply) {
    const std::lock_guard lock(_mutex);
    if (_ready.empty() || _contents.requests[_ready.front()].replyHash != hash(reply)) {
        _contents.surprises.push_back("a reply out of order, or after one that was dropped: " +
                                      reply);
        return;
    }
    _lastSent = _ready.front();
    _contents.requests[*_lastSent].state = State::REPLIED;
    _ready.pop_front();
}

void Ledger::undeliverable() {
    const std::lock_guard lock(_mutex);
    if (!_lastSent) {
        _contents.surprises.emplace_back("a failed send without a reply");
        return;
    }
    _contents.requests[*_lastSent].state = State::UNDELIVERABLE;
}

void Ledger::headerRefused() {
    const std::lock_guard lock(_mutex);
    ++_contents.headerRefusals;
}

void Ledger::bodyRefused() {
    const std::lock_guard lock(_mutex);
    ++_contents.bodyRefusals;
}

void Ledger::surprise(const std::string& what) {
    const std::lock_guard lock(_mutex);
    _contents.surprises.push_back(what);
}

bool Ledger::isSettled(RequestNumber request) const {
    const std::lock_guard lock(_mutex);
    const State state = _contents.requests.at(request).state;
    return state != State::SENT && state != State::TAKEN && state != State::READY;
}

bool Ledger::isWithoutReply(RequestNumber request) const {
    const std::lock_guard lock(_mutex);
    const State state = _contents.requests.at(request).state;
    return state == State::FAILED || state == State::UNDELIVERABLE;
}

bool Ledger::isTaken(RequestNumber request) const {
    const std::lock_guard lock(_mutex);
    return _contents.requests.at(request).taken.has_value();
}
