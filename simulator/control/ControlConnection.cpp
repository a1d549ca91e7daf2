#include "simulator/control/ControlConnection.h"

#include <exception>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/read_until.hpp>
#include <asio/write.hpp>

#include "simulator/base/JsonText.h"

namespace sim {

namespace {

/// A command carries at most the data of one reticle.
constexpr std::size_t MAX_COMMAND_BYTES = std::size_t{16} << 20U;
/// What may wait for a client that does not read, besides the line on its way.
constexpr std::size_t MAX_WAITING_BYTES = std::size_t{1} << 20U;

std::string errorText(const std::string& error) {
    Json::Value json;
    json["error"] = error;
    return compactJson(json);
}

}  // namespace

ControlConnection::ControlConnection(asio::local::stream_protocol::socket socket,
                                     CommandFunction command)
    : _socket(std::move(socket)), _command(std::move(command)) {}

void ControlConnection::start() {
    asio::async_read_until(_socket, asio::dynamic_buffer(_received, MAX_COMMAND_BYTES), '\n',
                           [self = shared_from_this()](const auto& error, std::size_t size) {
                               self->_onRequest(error, size);
                           });
}

void ControlConnection::tell(const SharedLine& line) {
    if (!_lines.empty() && _bytes + line->size() > MAX_WAITING_BYTES) {
        return;
    }
    _bytes += line->size();
    _lines.push_back(line);
    if (_lines.size() == 1) {
        _send();
    }
}

void ControlConnection::_onRequest(const asio::error_code& error, std::size_t size) {
    if (error && error != asio::error::not_found) {
        return;
    }
    std::string answer = errorText("the command is longer than 16 MiB");
    if (!error) {
        _received.resize(size);
        answer = _answer(std::exchange(_received, {}));
    }
    if (!_isFollowing) {
        tell(std::make_shared<const std::string>(answer + '\n'));
    }
}

/// \return what the client gets; nothing where it follows from now on
std::string ControlConnection::_answer(const std::string& request) {
    try {
        const Words words = parseWords(request);
        if (formOf(words).name == EVENTS_COMMAND) {
            _follow();
            return "";
        }
        return compactJson(_command(words));
    } catch (const std::exception& error) {
        return errorText(error.what());
    }
}

void ControlConnection::_follow() {
    _isFollowing = true;
    // Only to see it leave.
    _socket.async_read_some(asio::buffer(_unexpected),
                            [self = shared_from_this()](const auto& /*error*/, std::size_t) {
                                self->_isFollowing = false;
                                asio::error_code ignored;
                                self->_socket.close(ignored);
                            });
}

void ControlConnection::_send() {
    asio::async_write(_socket, asio::buffer(*_lines.front()),
                      [self = shared_from_this()](const auto& error, std::size_t /*sent*/) {
                          if (error) {
                              return;
                          }
                          self->_bytes -= self->_lines.front()->size();
                          self->_lines.pop_front();
                          if (!self->_lines.empty()) {
                              self->_send();
                          }
                      });
}

}  // namespace sim
