#include "tests/support/Connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace {

constexpr std::size_t CHUNK_BYTES = 65536;

bool becomesReady(int socket, short event, std::chrono::milliseconds bound) {
    pollfd waited{socket, event, 0};
    return poll(&waited, 1, static_cast<int>(bound.count())) > 0;
}

std::chrono::milliseconds leftUntil(std::chrono::steady_clock::time_point deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
}

}  // namespace

void Connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!becomesReady(_socket.get(), POLLOUT, PATIENCE)) {
            throw std::system_error(ETIMEDOUT, std::generic_category(), "send");
        }
        const ssize_t count =
            ::send(_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0) {
            throw std::system_error(errno, std::generic_category(), "send");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::string Connection::receive(std::size_t count, std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    std::string bytes;
    std::string chunk(std::min(count, CHUNK_BYTES), '\0');
    while (bytes.size() < count && becomesReady(_socket.get(), POLLIN, leftUntil(deadline))) {
        const std::size_t wanted = std::min(count - bytes.size(), chunk.size());
        const ssize_t received = recv(_socket.get(), chunk.data(), wanted, MSG_DONTWAIT);
        if (received <= 0) {
            break;
        }
        bytes.append(chunk, 0, static_cast<std::size_t>(received));
    }
    return bytes;
}

std::string Connection::receiveOnce(std::size_t count) {
    if (!becomesReady(_socket.get(), POLLIN, PATIENCE)) {
        throw std::system_error(ETIMEDOUT, std::generic_category(), "recv");
    }
    std::string bytes(count, '\0');
    const ssize_t received = recv(_socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (received < 0) {
        throw std::system_error(errno, std::generic_category(), "recv");
    }
    bytes.resize(static_cast<std::size_t>(received));
    return bytes;
}

bool Connection::isQuiet() const {
    return !becomesReady(_socket.get(), POLLIN, std::chrono::milliseconds::zero());
}

bool Connection::seesEnd(std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    std::string chunk(CHUNK_BYTES, '\0');
    while (becomesReady(_socket.get(), POLLIN, leftUntil(deadline))) {
        if (recv(_socket.get(), chunk.data(), chunk.size(), MSG_DONTWAIT) <= 0) {
            return true;
        }
    }
    return false;
}

void Connection::closeWriting() const {
    shutdown(_socket.get(), SHUT_WR);
}

void Connection::reset() {
    const linger atOnce{1, 0};
    setsockopt(_socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    _socket.close();
}
