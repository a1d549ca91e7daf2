#pragma once

#include <cstdint>
#include <iosfwd>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include "simulator/link/Delivery.h"

namespace sim {

/// Listens on 127.0.0.1 and answers every connection, several at once if they come.
///
/// All of it happens on the thread that runs the io_context.
class Server {
public:
    /// Listens at once; connections wait until `start` and the io_context's run.
    /// \param io, log outlive the server
    /// \param port 0 for any free one
    /// \throws std::system_error, naming the address, when the port is taken or not allowed.
    Server(asio::io_context& io, std::uint16_t port, std::ostream& log);

    /// Takes connections from now on.
    /// \param exchange asked for each request of each connection, one at a time
    void start(ExchangeFunction exchange);

    /// The port that it listens on.
    [[nodiscard]] std::uint16_t port() const { return _acceptor.local_endpoint().port(); }

private:
    void _accept();

    std::ostream& _log;
    asio::ip::tcp::acceptor _acceptor;
    asio::steady_timer _retry;
    ExchangeFunction _exchange;
};

}  // namespace sim
