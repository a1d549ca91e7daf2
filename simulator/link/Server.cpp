#include "simulator/link/Server.h"

#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>

#include "simulator/link/Connection.h"

namespace sim {

namespace {

/// After a failed accept, for want of descriptors say: at once it would only fail again.
constexpr std::chrono::milliseconds ACCEPT_RETRY{100};

asio::ip::tcp::acceptor listenOn(asio::io_context& io, std::uint16_t port) {
    try {
        return {io, {asio::ip::address_v4::loopback(), port}};
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot listen on 127.0.0.1:" + std::to_string(port));
    }
}

}  // namespace

Server::Server(asio::io_context& io, std::uint16_t port, std::ostream& log)
    : _log(log), _acceptor(listenOn(io, port)), _retry(io) {}

void Server::start(ExchangeFunction exchange) {
    _exchange = std::move(exchange);
    _accept();
}

void Server::_accept() {
    _acceptor.async_accept([this](const asio::error_code& error, asio::ip::tcp::socket socket) {
        if (!error) {
            std::make_shared<Connection>(std::move(socket), _exchange, _log)->start();
            _accept();
            return;
        }
        _log << "rtos-sim: cannot take a connection: " << error.message() << std::endl;
        _retry.expires_after(ACCEPT_RETRY);
        _retry.async_wait([this](const asio::error_code& /*aborted*/) { _accept(); });
    });
}

}  // namespace sim
