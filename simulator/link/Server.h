#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <vector>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include "simulator/link/Connection.h"
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

    /// Ends all connections and listens no more until `down` has passed; not at all where it is 0.
    /// \param whenUp called when it listens again: at the end of the time, or later where the port
    ///        has been taken meanwhile. A restart amid another one takes its place.
    void restart(std::chrono::milliseconds down, std::function<void()> whenUp);

    /// Whether it listens.
    [[nodiscard]] bool isUp() const { return _acceptor.is_open(); }

    /// The port that it listens on.
    [[nodiscard]] std::uint16_t port() const { return _port; }

private:
    void _accept();
    void _serve(asio::ip::tcp::socket socket);
    void _goUp();
    void _wait(std::chrono::milliseconds time, void (Server::*then)());

    std::ostream& _log;
    asio::ip::tcp::acceptor _acceptor;
    std::uint16_t _port;
    asio::steady_timer _timer;
    std::size_t _life = 0;  ///< restarts so far: what was begun before the last one is over
    ExchangeFunction _exchange;
    std::vector<std::weak_ptr<Connection>> _connections;
    std::function<void()> _whenUp;
};

}  // namespace sim
