#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tests/soak/Ledger.h"
#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"

/// A client that asks and reads what comes, all of it entered into the ledger. One thread.
class Conversation {
public:
    /// Connects. \param ledger must outlive this object.
    explicit Conversation(Ledger& ledger, int receiveBufferBytes = 0)
        : _ledger(ledger), _client(receiveBufferBytes), _number(ledger.connect()) {}

    /// The frame of a new request: `members` with the request's number in front.
    [[nodiscard]] std::string frame(const std::string& members,
                                    Ledger::Expectation expectation = {});

    /// Sends a request and waits for a reply.
    /// \return nothing when the log says that there is none, or the request was not even taken
    ///         within a few seconds: what became of it is left to the balance.
    [[nodiscard]] std::optional<std::string> ask(const std::string& members,
                                                 Ledger::Expectation expectation = {});

    /// Waits for the reply to the last request, as `ask` does.
    [[nodiscard]] std::optional<std::string> waitForReply();

    /// The next reply, nothing when none is complete within `bound`.
    [[nodiscard]] std::optional<std::string> read(std::chrono::milliseconds bound);

    /// The number of the last request.
    [[nodiscard]] Ledger::RequestNumber lastRequest() const { return _lastRequest; }

    [[nodiscard]] FrameClient& client() { return _client; }

    /// Ends the connection's own direction and waits until the service has read everything.
    void finish();
    /// Resets the connection.
    void reset();
    /// Closes it without regard to what is under way.
    void close();

private:
    [[nodiscard]] bool _fill(std::size_t size, std::chrono::milliseconds bound);

    Ledger& _ledger;
    FrameClient _client;
    Ledger::ConnectionNumber _number;
    Ledger::RequestNumber _lastRequest = 0;
    std::string _arrived;
};
