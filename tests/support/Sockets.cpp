#include "tests/support/Sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace {

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

FileDescriptor newSocket(int flags = 0) {
    return {socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0), "socket"};
}

void require(int result, const std::string& purpose, std::uint16_t port) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(),
                                purpose + " port " + std::to_string(port));
    }
}

}  // namespace

FileDescriptor sockets::listenOn(std::uint16_t port, int backlog) {
    FileDescriptor listener = newSocket();
    const int on = 1;
    // A port whose last connection has just been closed can be had again at once.
    setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = loopback(port);
    require(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            "bind", port);
    require(listen(listener.get(), backlog), "listen on", port);
    return listener;
}

FileDescriptor sockets::connectTo(std::uint16_t port, int receiveBufferBytes, const char* host) {
    FileDescriptor socket = newSocket();
    if (receiveBufferBytes > 0) {
        setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &receiveBufferBytes,
                   sizeof receiveBufferBytes);
    }
    sockaddr_in address = loopback(port);
    address.sin_addr.s_addr = inet_addr(host);
    require(connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            "connect to", port);
    return socket;
}

FileDescriptor sockets::startConnectingTo(std::uint16_t port) {
    FileDescriptor socket = newSocket(SOCK_NONBLOCK);
    const sockaddr_in address = loopback(port);
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0 &&
        errno != EINPROGRESS) {
        throw std::system_error(errno, std::generic_category(), "start to connect");
    }
    return socket;
}
