#pragma once

#include <json/value.h>

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include <asio/local/stream_protocol.hpp>

#include "simulator/control/CommandForm.h"

namespace sim {

/// Carries out one command. \throws std::runtime_error with a text for people.
using CommandFunction = std::function<Json::Value(const Words& words)>;

/// A line that several connections send.
using SharedLine = std::shared_ptr<const std::string>;

/// One client of the ControlServer. Owns itself through its pending operations and ends with the
/// client or with the io_context, on whose thread it runs.
class ControlConnection : public std::enable_shared_from_this<ControlConnection> {
public:
    ControlConnection(asio::local::stream_protocol::socket socket, CommandFunction command);

    void start();

    /// Whether it wants events.
    [[nodiscard]] bool isFollowing() const { return _isFollowing; }

    /// Sends `line` to a client that follows; not where too much is waiting for it to read.
    void tell(const SharedLine& line);

private:
    void _onRequest(const asio::error_code& error, std::size_t size);
    [[nodiscard]] std::string _answer(const std::string& request);
    void _follow();
    void _send();

    asio::local::stream_protocol::socket _socket;
    CommandFunction _command;
    std::string _received;
    std::array<char, 1> _unexpected{};  ///< nothing is to come from a client that follows
    std::deque<SharedLine> _lines;      ///< to be sent, the first one on its way
    std::size_t _bytes = 0;             ///< of `_lines`
    bool _isFollowing = false;
};

}  // namespace sim
