#include "client/Connection.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>

#include "reticle-client/Errors.h"

namespace reticle {

namespace {

using Addresses = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

[[noreturn]] void failToConnect(const std::string& peer, const std::string& reason) {
    throw CannotConnect("cannot connect to " + peer + ": " + reason +
                        ": check that the reticle service runs there, and the host and port");
}

std::string inSeconds(std::chrono::milliseconds time) {
    std::ostringstream text;
    text << std::chrono::duration<double>(time).count() << " s";
    return text.str();
}

/// \return false when the deadline has passed, even for a peer that always has something to say.
/// \throws Cancelled.
bool isReady(int socket, short events, const Deadline& deadline) {
    while (const int leftMs = deadline.leftMs()) {
        // poll passes over a negative descriptor.
        std::array<pollfd, 2> entries{
            {{socket, events, 0}, {deadline.cancelDescriptor(), POLLIN, 0}}};
        const int count =
            ::poll(entries.data(), entries.size(), std::min(leftMs, Deadline::TOLD_WAIT_MS));
        if (count > 0 && entries[1].revents != 0) {
            throw Cancelled("cancelled");
        }
        if (count > 0 || (count < 0 && errno != EINTR)) {
            return true;
        }
        if (count == 0 && leftMs > Deadline::TOLD_WAIT_MS) {
            deadline.tellWait();
        }
    }
    return false;
}

Addresses lookUp(const std::string& host, std::uint16_t port, const std::string& peer) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error != 0) {
        failToConnect(peer, error == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(error));
    }
    return {found, &::freeaddrinfo};
}

/// \return 0 or the errno value of the failure.
int connectTo(const addrinfo& address, const Socket& socket, const Deadline& deadline) {
    if (!socket.isOpen()) {
        return errno;
    }
    if (::connect(socket.descriptor(), address.ai_addr, address.ai_addrlen) == 0) {
        return 0;
    }
    if (errno != EINPROGRESS && errno != EINTR) {
        return errno;
    }
    if (!isReady(socket.descriptor(), POLLOUT, deadline)) {
        return ETIMEDOUT;
    }
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket.descriptor(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

Socket connectToAny(const std::string& host, std::uint16_t port, const std::string& peer,
                    const Deadline& deadline) {
    const Addresses addresses = lookUp(host, port, peer);
    int error = 0;
    for (const addrinfo* address = addresses.get(); address != nullptr;
         address = address->ai_next) {
        Socket socket(::socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        error = connectTo(*address, socket, deadline);
        if (error == 0) {
            return socket;
        }
    }
    failToConnect(peer, std::strerror(error));
}

}  // namespace

Connection::Connection(const std::string& host, std::uint16_t port, const Deadline& deadline)
    : _peer(host + ":" + std::to_string(port)),
      _socket(connectToAny(host, port, _peer, deadline)) {}

void Connection::send(std::string_view bytes, const Deadline& deadline,
                      const SentListener& listener) {
    const std::size_t total = bytes.size();
    while (!bytes.empty()) {
        const ssize_t sent = ::send(_socket.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            if (listener) {
                listener(total - bytes.size());
            }
        } else if (errno == EAGAIN) {
            _waitFor(POLLOUT, deadline);
        } else if (errno != EINTR) {
            throw NoReply(_peer + " did not take the request: " + std::strerror(errno) +
                          ": check that the reticle service listens there, and its log");
        }
    }
}

std::size_t Connection::receive(std::string& text, std::size_t atMost, const Deadline& deadline) {
    constexpr std::size_t CHUNK_BYTES = 65536;
    std::array<char, CHUNK_BYTES> chunk{};
    while (true) {
        _waitFor(POLLIN, deadline);
        const ssize_t received =
            ::recv(_socket.descriptor(), chunk.data(), std::min(chunk.size(), atMost), 0);
        if (received >= 0) {
            text.append(chunk.data(), static_cast<std::size_t>(received));
            return static_cast<std::size_t>(received);
        }
        if (errno != EAGAIN && errno != EINTR) {
            return 0;
        }
    }
}

void Connection::_waitFor(short events, const Deadline& deadline) const {
    if (!isReady(_socket.descriptor(), events, deadline)) {
        throw NoReply(
            "no reply from " + _peer + " within " + inSeconds(deadline.timeout()) +
            ": check the device's RTOS side and the service's log (a link to the RTOS that "
            "was lost stays so until the service restarts)");
    }
}

}  // namespace reticle
