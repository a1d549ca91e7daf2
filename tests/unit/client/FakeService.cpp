#include "tests/unit/client/FakeService.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "client/FrameFormat.h"

namespace reticle::test {

namespace {

constexpr int PATIENCE_S = 10;

void require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

Socket listenOnLoopback() {
    Socket listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    // Small, so that a long request cannot be sent in one piece.
    const int receiveBytes = 4096;
    ::setsockopt(listener.descriptor(), SOL_SOCKET, SO_RCVBUF, &receiveBytes, sizeof receiveBytes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what bind takes
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    require(::bind(listener.descriptor(), general, sizeof address) == 0, "bind");
    require(::listen(listener.descriptor(), 1) == 0, "listen");
    return listener;
}

std::uint16_t portOf(const Socket& listener) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what getsockname takes
    auto* general = reinterpret_cast<sockaddr*>(&address);
    require(::getsockname(listener.descriptor(), general, &size) == 0, "getsockname");
    return ntohs(address.sin_port);
}

/// Up to `size` bytes; fewer when the client closes first.
std::string receiveAll(const Socket& socket, std::size_t size) {
    std::string text(size, '\0');
    const ssize_t received = ::recv(socket.descriptor(), text.data(), size, MSG_WAITALL);
    text.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
    return text;
}

}  // namespace

FakePeer::FakePeer(Socket socket) : _socket(std::move(socket)) {
    const timeval patience{PATIENCE_S, 0};
    ::setsockopt(_socket.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    ::setsockopt(_socket.descriptor(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
}

std::string FakePeer::receiveRequest() {
    const std::string header = receiveAll(_socket, FRAME_HEADER_BYTES);
    return header.size() < FRAME_HEADER_BYTES ? ""
                                              : receiveAll(_socket, announcedBodyBytes(header));
}

void FakePeer::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(_socket.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

bool FakePeer::hasClosed(int timeoutMs) const {
    pollfd entry{_socket.descriptor(), POLLIN, 0};
    return ::poll(&entry, 1, timeoutMs) != 0;
}

void FakePeer::waitForClose() {
    while (!receiveAll(_socket, 1).empty()) {
    }
}

void FakePeer::resetOnClose() {
    const linger immediately{1, 0};
    ::setsockopt(_socket.descriptor(), SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
}

FakeService::FakeService(Script script)
    : _script(std::move(script)),
      _listener(listenOnLoopback()),
      _port(portOf(_listener)),
      _thread(&FakeService::_serve, this) {}

FakeService::~FakeService() {
    ::shutdown(_listener.descriptor(), SHUT_RDWR);
    _thread.join();
}

void FakeService::_serve() {
    while (true) {
        Socket client(::accept(_listener.descriptor(), nullptr, nullptr));
        if (!client.isOpen()) {
            return;
        }
        FakePeer peer(std::move(client));
        _script(peer);
    }
}

FakeService::Script answering(std::string bytes, std::vector<std::string>* requests) {
    return [bytes = std::move(bytes), requests](FakePeer& peer) {
        const std::string request = peer.receiveRequest();
        // A client that leaves without a word has asked for nothing.
        if (requests != nullptr && !request.empty()) {
            requests->push_back(request);
        }
        peer.send(bytes);
        peer.waitForClose();
    };
}

std::uint16_t unusedPort() {
    return portOf(listenOnLoopback());
}

}  // namespace reticle::test
