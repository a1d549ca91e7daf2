#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/Connection.h"
#include "tests/support/Sockets.h"

namespace sim::test {

/// The service's end of a connection to the simulator. All \throw std::system_error.
class LoopbackClient {
public:
    explicit LoopbackClient(std::uint16_t port) : _connection(sockets::connectTo(port)) {}

    void send(std::string_view text) { _connection.send(text); }

    /// What the service reads at once. Empty: the peer closed.
    [[nodiscard]] std::string receive() {
        constexpr std::size_t SERVICE_RECV_BYTES = 1024;
        return _connection.receiveOnce(SERVICE_RECV_BYTES);
    }

    /// Sends and receives once.
    [[nodiscard]] std::string exchange(std::string_view text) {
        send(text);
        return receive();
    }

private:
    ::Connection _connection;
};

}  // namespace sim::test
