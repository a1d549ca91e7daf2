#include "rtos/LocalCommunicator.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <stdexcept>

#include "base/Log.h"
#include "base/LoggedJson.h"

namespace reticled {
namespace {

/// None at all would be taken for no limit. An answer that is there already needs no time.
constexpr std::chrono::microseconds SHORTEST_RECV_TIMEOUT{1};

}  // namespace

LocalCommunicator::LocalCommunicator() : _socket(socket(AF_INET, SOCK_STREAM, 0)) {
    if (_socket < 0) {
        const int error = errno;
        logLine(std::cout, "Error on opening of local tcp socket ");
        logSystemError(error);
    }
    _serverAddr.sin_family = AF_INET;
    _serverAddr.sin_addr.s_addr = inet_addr(RTOS_ADDRESS);
    _serverAddr.sin_port = htons(RTOS_PORT);
    _setRecvTimeout(RTOS_RECV_TIMEOUT);
    _recvJson.reserve(RTOS_BUFFER_SIZE);
}

LocalCommunicator::~LocalCommunicator() {
    if (::close(_socket) < 0) {
        const int error = errno;
        logLine(std::cout, "Error on close local tcp socket ");
        logSystemError(error);
    }
}

std::string LocalCommunicator::send_and_get(const std::string& request) {
    _connectOnce();
    _recvJson.clear();
    _send(request);
    _receive();
    if (!_isRecvJsonValid()) {
        throw std::runtime_error("Corrupted json packet was received fromRTOS");
    }
    logLine(std::cout, "send_and_get", ": recv json: ", LoggedJson(_recvJson));
    return _recvJson;
}

void LocalCommunicator::close() {
    // The number stays in _socket, where connecting fails from now on (also when a client's
    // connection has it by then): a lost link must not come back by itself.
    ::close(_socket);
    _isConnected = false;
}

bool LocalCommunicator::_isRecvJsonValid() const {
    return JsonRetriever::isJson(_recvJson);
}

void LocalCommunicator::_setRecvTimeout(std::chrono::microseconds duration) const {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(duration);
    // Of 32 bits on some machines.
    const timeval timeout{.tv_sec = static_cast<time_t>(seconds.count()),
                          .tv_usec = static_cast<suseconds_t>((duration - seconds).count())};
    if (setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout) < 0) {
        logSystemError(errno);
    }
}

void LocalCommunicator::_connectOnce() {
    if (_isConnected) {
        return;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface asks for it
    const auto* address = reinterpret_cast<const sockaddr*>(&_serverAddr);
    if (connect(_socket, address, sizeof _serverAddr) < 0) {
        logSystemError(errno);
        throw std::runtime_error("Error on attempt to connect to local tcp server ");
    }
    _isConnected = true;
}

void LocalCommunicator::_send(const std::string& request) const {
    // An RTOS that has gone is an error of this exchange, not a signal that ends the service.
    if (send(_socket, request.data(), request.size(), MSG_NOSIGNAL) < 0) {
        logSystemError(errno);
        throw std::runtime_error("Error on sending json request throw local tcp socket ");
    }
}

ssize_t LocalCommunicator::_waitForAnswer() {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + RTOS_RECV_TIMEOUT;
    ssize_t received = recv(_socket, _buffer.data(), RTOS_BUFFER_SIZE, 0);
    // A stopped or frozen process and a debugger interrupt it.
    while (received < 0 && errno == EINTR) {
        const auto rest = std::chrono::ceil<std::chrono::microseconds>(deadline - Clock::now());
        _setRecvTimeout(std::max(rest, SHORTEST_RECV_TIMEOUT));
        received = recv(_socket, _buffer.data(), RTOS_BUFFER_SIZE, 0);
        const int error = errno;
        _setRecvTimeout(RTOS_RECV_TIMEOUT);
        errno = error;
    }
    return received;
}

void LocalCommunicator::_receive() {
    const ssize_t received = _waitForAnswer();
    if (received < 0) {
        logSystemError(errno);
        close();
        throw std::runtime_error("Error after receiving json from local tcp,socket closed");
    }
    if (received == 0) {
        close();
        throw std::runtime_error("Unexpected received FIN of local tcp connection,socket closed");
    }
    // A zero byte within the answer ends it early.
    _buffer.at(static_cast<std::size_t>(received)) = '\0';
    _recvJson = _buffer.data();
}

}  // namespace reticled
