#include "simulator/link/Connection.h"

#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/write.hpp>

namespace sim {

Connection::Connection(asio::ip::tcp::socket socket, ExchangeFunction exchange, std::ostream& log)
    : _socket(std::move(socket)),
      _timer(_socket.get_executor()),
      _exchange(std::move(exchange)),
      _log(log) {
    asio::error_code ignored;
    // The halves of a split answer, and answers to requests sent at once, are segments of their
    // own.
    _socket.set_option(asio::ip::tcp::no_delay(true), ignored);
}

void Connection::close() {
    asio::error_code ignored;
    _socket.close(ignored);
    _timer.cancel();
}

void Connection::_read() {
    _socket.async_read_some(asio::buffer(_received),
                            [self = shared_from_this()](const auto& error, std::size_t size) {
                                self->_onRead(error, size);
                            });
}

void Connection::_onRead(const asio::error_code& error, std::size_t size) {
    if (error) {
        if (_requests.isInsideText()) {
            _log << "rtos-sim: the connection ended inside a request: " << error.message()
                 << std::endl;
        }
        return;
    }
    _requests.feed(std::string_view(_received.data(), size));
    _answerNext();
}

void Connection::_answerNext() {
    if (!_socket.is_open()) {
        return;
    }
    if (const std::optional<std::string> request = _requests.next()) {
        _delivery = _exchange(*request);
        _wait(_delivery.delay, &Connection::_sendFirst);
    } else {
        _read();
    }
}

void Connection::_wait(std::chrono::milliseconds time, void (Connection::*then)()) {
    _timer.expires_after(time);
    _timer.async_wait([self = shared_from_this(), then](const auto& error) {
        if (!error) {
            (*self.*then)();
        }
    });
}

void Connection::_sendFirst() {
    if (_delivery.gap) {
        _send(_delivery.bytes.size() / 2, &Connection::_waitForGap);
    } else {
        _sendRest();
    }
}

void Connection::_waitForGap() {
    _wait(*_delivery.gap, &Connection::_sendRest);
}

void Connection::_sendRest() {
    _send(_delivery.bytes.size(), &Connection::_finish);
}

void Connection::_send(std::size_t size, void (Connection::*then)()) {
    asio::async_write(_socket, asio::buffer(_delivery.bytes, size),
                      [self = shared_from_this(), then](const auto& error, std::size_t sent) {
                          if (!error) {
                              self->_delivery.bytes.erase(0, sent);
                              (*self.*then)();
                          }
                      });
}

void Connection::_finish() {
    asio::error_code ignored;
    switch (_delivery.end) {
        case Delivery::End::KEEP_OPEN:
            _answerNext();
            break;
        case Delivery::End::CLOSE:
            _socket.close(ignored);
            break;
        case Delivery::End::RESET:
            _socket.set_option(asio::socket_base::linger(true, 0), ignored);
            _socket.close(ignored);
            break;
    }
}

}  // namespace sim
