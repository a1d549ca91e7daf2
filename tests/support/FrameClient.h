#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/Connection.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"

/// A client on a real socket: frames as the protocol has them, and any other bytes.
class FrameClient {
public:
    /// Connects. For `receiveBufferBytes` see sockets::connectTo.
    explicit FrameClient(int receiveBufferBytes = 0, std::uint16_t port = CLIENT_PORT)
        : _connection(sockets::connectTo(port, receiveBufferBytes)) {}

    /// Sends `body` as one frame.
    void sendFrame(std::string_view body);

    /// Sends bytes that are, or are not, a frame.
    void sendBytes(std::string_view bytes) { _connection.send(bytes); }

    /// The body of the next frame.
    /// \throws std::runtime_error when no whole frame comes within `bound`, or its header is not
    ///         exactly the sync sequence and a length.
    [[nodiscard]] std::string readReply(std::chrono::milliseconds bound = PATIENCE);

    /// See Connection::receive.
    [[nodiscard]] std::string readBytes(std::size_t count) { return _connection.receive(count); }

    [[nodiscard]] Connection& connection() { return _connection; }

    /// The 36 bytes in front of a body of `bodyBytes` bytes.
    [[nodiscard]] static std::string header(std::uint32_t bodyBytes);

private:
    Connection _connection;
};
