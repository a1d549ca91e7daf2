#include "simulator/link/Server.h"

#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>

namespace sim {

namespace {

/// After a failed accept, for want of descriptors say: at once it would only fail again.
constexpr std::chrono::milliseconds RETRY{100};

asio::ip::tcp::acceptor listenOn(const asio::any_io_executor& executor, std::uint16_t port) {
    try {
        return {executor, {asio::ip::address_v4::loopback(), port}};
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot listen on 127.0.0.1:" + std::to_string(port));
    }
}

}  // namespace

Server::Server(asio::io_context& io, std::uint16_t port, std::ostream& log)
    : _log(log),
      _acceptor(listenOn(io.get_executor(), port)),
      _port(_acceptor.local_endpoint().port()),
      _timer(io) {}

void Server::start(ExchangeFunction exchange) {
    _exchange = std::move(exchange);
    _accept();
}

void Server::restart(std::chrono::milliseconds down, std::function<void()> whenUp) {
    ++_life;
    _whenUp = std::move(whenUp);
    asio::error_code ignored;
    _acceptor.close(ignored);
    for (const std::weak_ptr<Connection>& connection : _connections) {
        if (const std::shared_ptr<Connection> open = connection.lock()) {
            open->close();
        }
    }
    _connections.clear();
    if (down.count() > 0) {
        _wait(down, &Server::_goUp);
    } else {
        _goUp();
    }
}

void Server::_accept() {
    _acceptor.async_accept(
        [this, life = _life](const asio::error_code& error, asio::ip::tcp::socket socket) {
            if (life != _life) {
                return;
            }
            if (error) {
                _log << "rtos-sim: cannot take a connection: " << error.message() << std::endl;
                _wait(RETRY, &Server::_accept);
            } else {
                _serve(std::move(socket));
                _accept();
            }
        });
}

void Server::_serve(asio::ip::tcp::socket socket) {
    std::erase_if(_connections, [](const auto& connection) { return connection.expired(); });
    const auto connection = std::make_shared<Connection>(std::move(socket), _exchange, _log);
    _connections.push_back(connection);
    connection->start();
}

void Server::_goUp() {
    try {
        _acceptor = listenOn(_acceptor.get_executor(), _port);
    } catch (const std::system_error& error) {
        _log << "rtos-sim: " << error.what() << std::endl;
        _wait(RETRY, &Server::_goUp);
        return;
    }
    _accept();
    _whenUp();
}

void Server::_wait(std::chrono::milliseconds time, void (Server::*then)()) {
    _timer.expires_after(time);
    _timer.async_wait([this, life = _life, then](const asio::error_code& /*error*/) {
        if (life == _life) {
            (this->*then)();
        }
    });
}

}  // namespace sim
