#include "tests/soak/Balance.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <unordered_set>

namespace {

constexpr std::size_t QUEUE_CAPACITY = 15;
constexpr std::size_t MAX_FAULTS_PRINTED = 20;
constexpr std::size_t MAX_FAULT_BYTES = 500;

constexpr auto SENT = "requests sent";
constexpr auto ANSWERED = "answered, the same bytes received";
constexpr auto NOT_READ = "answered, the client had left";
constexpr auto UNDELIVERABLE = "answered, could not be sent: the client had left";
constexpr auto QUEUE_FULL = "dropped: 15 requests waited";
constexpr auto SENDER_GONE = "dropped: the client left before it was read";
constexpr auto STRAYS = "replies of clients that had left, sent to their successors";
constexpr auto FAILED = "failed: ";

/// What docs/operations.md says of requests without a reply, as far as the soak causes it.
constexpr std::array<std::string_view, 7> DOCUMENTED_FAILURES{
    "Error on attempt to connect to local tcp server ",
    "Unexpected received FIN of local tcp connection,socket closed",
    "Error after receiving json from local tcp,socket closed",
    "Error on sending json request throw local tcp socket ",
    "Corrupted json packet was received fromRTOS",
    "in Json::Value::asCString(): requires stringValue",
    "Value is not convertible to Int."};

/// Until when the service must have read a request: it reads a connection in order.
Ledger::Clock::time_point readBefore(const Ledger::Contents& round, Ledger::RequestNumber number) {
    const Ledger::ConnectionNumber connection = round.requests[number].connection;
    const Ledger::Clock::time_point ended = round.connections[connection].ended;
    for (std::size_t later = number + 1; later < round.requests.size(); ++later) {
        const Ledger::Request& request = round.requests[later];
        if (request.sent > ended) {
            break;
        }
        if (request.connection == connection && request.taken) {
            return *request.taken;
        }
    }
    return ended;
}

/// Whether as many requests as the queue holds were waiting at some time while this one came. Looks
/// from the latest backwards, no further than any request waits.
bool couldFindQueueFull(const Ledger::Contents& round, Ledger::RequestNumber number) {
    constexpr std::chrono::minutes LONGEST_WAIT{3};
    const Ledger::Clock::time_point start = round.requests[number].sent;
    const auto end = std::ranges::upper_bound(round.requests, readBefore(round, number), {},
                                              &Ledger::Request::sent);
    std::size_t waiting = 0;
    for (auto other = end; other != round.requests.begin() && waiting < QUEUE_CAPACITY;) {
        --other;
        if (other->sent + LONGEST_WAIT < start) {
            break;
        }
        if (other->taken && *other->taken >= start) {
            ++waiting;
        }
    }
    return waiting >= QUEUE_CAPACITY;
}

}  // namespace

void Balance::add(const Ledger::Contents& round) {
    const std::size_t answeredBefore = _counts[ANSWERED];
    _addRequests(round);
    _addReplies(round);
    if (_counts[ANSWERED] == answeredBefore) {
        complain("a round without an answered request");
    }
    for (const auto& [reason, count] : round.failures) {
        _counts[FAILED + reason] += count;
        if (std::ranges::find(DOCUMENTED_FAILURES, reason) == DOCUMENTED_FAILURES.end()) {
            complain("an undocumented failure: " + reason);
        }
    }
    _addRefusals("frame headers refused", round.headerRefusals, round.expectedHeaderRefusals);
    _addRefusals("bodies refused that are not JSON", round.bodyRefusals,
                 round.expectedBodyRefusals);
    _faults.insert(_faults.end(), round.surprises.begin(), round.surprises.end());
}

void Balance::_addRequests(const Ledger::Contents& round) {
    _counts[SENT] += round.requests.size();
    for (std::size_t number = 0; number < round.requests.size(); ++number) {
        const Ledger::Request& request = round.requests[number];
        switch (request.state) {
            case Ledger::State::SENT:
                _addUntaken(round, number);
                break;
            case Ledger::State::TAKEN:
            case Ledger::State::READY:
                complain("request " + std::to_string(number) + " was taken and never settled");
                break;
            case Ledger::State::UNDELIVERABLE:
                ++_counts[UNDELIVERABLE];
                if (round.connections[request.connection].departure == Ledger::Departure::NONE) {
                    complain("a reply could not be sent to a client that was there");
                }
                break;
            case Ledger::State::FAILED:
            case Ledger::State::REPLIED:
                break;
        }
    }
}

void Balance::_addUntaken(const Ledger::Contents& round, Ledger::RequestNumber number) {
    const Ledger::Connection& connection = round.connections[round.requests[number].connection];
    if (connection.departure == Ledger::Departure::ABRUPT) {
        ++_counts[SENDER_GONE];
    } else if (couldFindQueueFull(round, number)) {
        ++_counts[QUEUE_FULL];
    } else {
        complain("request " + std::to_string(number) + " is lost, and the queue was not full");
    }
}

// A connection that stays has received exactly what was sent to it, in order. One that leaves has
// received part of it, and perhaps replies to the one that had its descriptor's number before.
void Balance::_addReplies(const Ledger::Contents& round) {
    std::vector<std::vector<std::size_t>> sent(round.connections.size());
    std::unordered_set<std::size_t> sentToAnyWhoLeft;
    for (const Ledger::Request& request : round.requests) {
        if (request.state == Ledger::State::REPLIED) {
            sent[request.connection].push_back(request.replyHash);
        }
        if (request.taken &&
            round.connections[request.connection].departure != Ledger::Departure::NONE) {
            sentToAnyWhoLeft.insert(request.replyHash);
        }
    }
    for (std::size_t number = 0; number < round.connections.size(); ++number) {
        const Ledger::Connection& connection = round.connections[number];
        if (connection.departure == Ledger::Departure::NONE) {
            _addRepliesOfStaying(number, connection, sent[number]);
            continue;
        }
        std::vector<std::size_t> own = sent[number];
        for (const std::size_t reply : connection.received) {
            const auto place = std::ranges::find(own, reply);
            if (place != own.end()) {
                own.erase(place);
                ++_counts[ANSWERED];
            } else if (sentToAnyWhoLeft.contains(reply)) {
                ++_counts[STRAYS];
            } else {
                complain("connection " + std::to_string(number) + " has received what is not its");
            }
        }
        _counts[NOT_READ] += own.size();
    }
}

void Balance::_addRepliesOfStaying(Ledger::ConnectionNumber number,
                                   const Ledger::Connection& connection,
                                   const std::vector<std::size_t>& sent) {
    _counts[ANSWERED] += connection.received.size();
    if (connection.received != sent) {
        complain("connection " + std::to_string(number) + " has received " +
                 std::to_string(connection.received.size()) + " replies, not the " +
                 std::to_string(sent.size()) + " that were sent to it");
    }
}

void Balance::_addRefusals(const std::string& what, std::size_t count, Ledger::Range expected) {
    _counts[what] += count;
    if (count < expected.least || count > expected.most) {
        complain(std::to_string(count) + " " + what + ", expected " +
                 std::to_string(expected.least) + " to " + std::to_string(expected.most));
    }
}

void Balance::print(std::ostream& out) const {
    constexpr int COUNT_WIDTH = 10;
    for (const auto& [what, count] : _counts) {
        out << std::setw(COUNT_WIDTH) << count << "  " << what << '\n';
    }
    for (std::size_t i = 0; i < std::min(_faults.size(), MAX_FAULTS_PRINTED); ++i) {
        out << "does not add up: " << _faults[i].substr(0, MAX_FAULT_BYTES) << '\n';
    }
}

std::string Balance::summary() const {
    if (!addsUp()) {
        return "does not add up: " + std::to_string(_faults.size()) +
               " findings, the first: " + _faults.front().substr(0, _faults.front().find('\n'));
    }
    const auto countOf = [this](const char* what) {
        const auto place = _counts.find(what);
        return std::to_string(place == _counts.end() ? 0 : place->second);
    };
    return "adds up: " + countOf(SENT) + " requests, " + countOf(ANSWERED) +
           " answered and received, the rest accounted for";
}
