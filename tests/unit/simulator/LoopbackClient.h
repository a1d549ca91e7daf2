#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim::test {

/// The service's end of a connection to the simulator. Waits at most 20 s for anything.
class LoopbackClient {
public:
    /// Connects to 127.0.0.1. \throws std::runtime_error when nothing listens there.
    explicit LoopbackClient(std::uint16_t port);
    ~LoopbackClient();
    LoopbackClient(const LoopbackClient&) = delete;
    LoopbackClient(LoopbackClient&&) = delete;
    LoopbackClient& operator=(const LoopbackClient&) = delete;
    LoopbackClient& operator=(LoopbackClient&&) = delete;

    void send(const std::string& text) const;

    /// What one recv of 1024 bytes gives, as the service reads. Empty: the peer closed.
    /// \throws std::system_error with the error of the recv.
    [[nodiscard]] std::string receive() const;

    /// Sends and receives once.
    [[nodiscard]] std::string exchange(const std::string& text) const;

private:
    int _socket;
};

}  // namespace sim::test
