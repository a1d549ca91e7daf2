#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "tests/support/FileDescriptor.h"
#include "tests/support/Patience.h"

/// One end of a TCP connection, as both the tests' clients and their RTOS use it.
class Connection {
public:
    Connection() = default;
    explicit Connection(FileDescriptor socket) : _socket(std::move(socket)) {}

    /// Sends all of `bytes`.
    /// \throws std::system_error when the peer is gone or takes nothing for PATIENCE.
    void send(std::string_view bytes);

    /// Receives until `count` bytes are there, the peer has closed, or `bound` has passed.
    [[nodiscard]] std::string receive(std::size_t count,
                                      std::chrono::milliseconds bound = PATIENCE);

    /// What one recv of `count` bytes gives; empty when the peer has closed.
    /// \throws std::system_error when the connection fails, or nothing comes for PATIENCE.
    [[nodiscard]] std::string receiveOnce(std::size_t count);

    /// Whether nothing waits to be received: no byte and no end of the connection.
    [[nodiscard]] bool isQuiet() const;

    /// Waits for the peer's end of the connection (closed or reset); bytes before it are dropped.
    [[nodiscard]] bool seesEnd(std::chrono::milliseconds bound = PATIENCE);

    /// Sends FIN and goes on receiving.
    void closeWriting() const;
    /// Ends the connection with RST; what was not sent yet is lost.
    void reset();
    void close() { _socket.close(); }

    [[nodiscard]] bool isOpen() const { return _socket.isOpen(); }
    [[nodiscard]] int descriptor() const { return _socket.get(); }

private:
    FileDescriptor _socket;
};
