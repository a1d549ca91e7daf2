#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// What became of every request of a round, told by two sides: the clients say what they sent and
/// received, the service's log what was taken, failed, answered and sent. Any thread.
///
/// The worker and the response thread handle one packet at a time and in order, so the line that
/// follows a request's own in the log is about that request.
class Ledger {
public:
    using Clock = std::chrono::steady_clock;
    using RequestNumber = std::size_t;
    using ConnectionNumber = std::size_t;
    /// Whether a reply is one that its request can have.
    using Expectation = std::function<bool(const std::string& reply)>;

    enum class State { SENT, TAKEN, FAILED, READY, REPLIED, UNDELIVERABLE };

    /// How a client went, which decides what may be missing.
    enum class Departure {
        NONE,      ///< it stays to the end and reads everything
        FINISHED,  ///< the service has read all that it sent
        ABRUPT     ///< what it sent may not have been read
    };

    struct Request {
        ConnectionNumber connection = 0;
        Clock::time_point sent;
        std::optional<Clock::time_point> taken;
        State state = State::SENT;
        std::size_t replyHash = 0;
        Expectation expectation;
    };

    struct Connection {
        Departure departure = Departure::NONE;
        Clock::time_point ended = Clock::time_point::max();
        std::vector<std::size_t> received;  ///< hashes of replies, in order
    };

    /// Between these many lines of a kind the log may hold.
    struct Range {
        std::size_t least = 0;
        std::size_t most = 0;
    };

    [[nodiscard]] static std::size_t hash(const std::string& text) {
        return std::hash<std::string>()(text);
    }

    // The clients' side.
    [[nodiscard]] ConnectionNumber connect();
    [[nodiscard]] RequestNumber announce(ConnectionNumber connection, Expectation expectation);
    void received(ConnectionNumber connection, const std::string& reply);
    void left(ConnectionNumber connection, Departure departure);
    /// Frame headers that the service must refuse, bodies that are not JSON.
    void expectRefusals(Range headers, Range bodies);

    // The log's side, in the order of its lines.
    void taken(RequestNumber request);
    void failed(const std::string& reason);
    void ready(const std::string& reply);
    void sending(const std::string& reply);
    void undeliverable();
    void headerRefused();
    void bodyRefused();
    void surprise(const std::string& what);

    /// Whether the log has said what became of it.
    [[nodiscard]] bool isSettled(RequestNumber request) const;
    /// Whether it will never have a reply, as far as the log says.
    [[nodiscard]] bool isWithoutReply(RequestNumber request) const;
    [[nodiscard]] bool isTaken(RequestNumber request) const;

    /// All of it, for the balance; nobody writes any more.
    struct Contents {
        std::vector<Request> requests;
        std::vector<Connection> connections;
        std::map<std::string, std::size_t> failures;
        std::vector<std::string> surprises;
        Range expectedHeaderRefusals;
        Range expectedBodyRefusals;
        std::size_t headerRefusals = 0;
        std::size_t bodyRefusals = 0;
    };
    [[nodiscard]] const Contents& contents() const { return _contents; }

private:
    mutable std::mutex _mutex;
    Contents _contents;
    std::optional<RequestNumber> _current;  ///< with the worker
    std::deque<RequestNumber> _ready;       ///< queued for the response thread
    std::optional<RequestNumber> _lastSent;
};
