#include "bench/common/Sockets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace reticled::bench {
namespace {

constexpr int BACKLOG = 256;
constexpr int RECEIVE_BUFFER_BYTES = 4194304;
constexpr std::chrono::seconds CONNECT_PATIENCE{10};
/// Short against any start-up, long enough to leave the core to whoever is starting.
constexpr std::chrono::microseconds CONNECT_PAUSE{20};

sockaddr_in addressOf(in_addr_t host, int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(host);
    address.sin_port = htons(static_cast<in_port_t>(port));
    return address;
}

void setOption(int socket, int level, int option, int value) {
    check(setsockopt(socket, level, option, &value, sizeof value), "setsockopt");
}

}  // namespace

int check(int result, const std::string& what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

int listenOn(int port) {
    const int listener = check(socket(AF_INET, SOCK_STREAM, 0), "socket");
    setOption(listener, SOL_SOCKET, SO_REUSEADDR, 1);
    setOption(listener, SOL_SOCKET, SO_RCVBUF, RECEIVE_BUFFER_BYTES);
    setOption(listener, IPPROTO_TCP, TCP_NODELAY, 1);
    const sockaddr_in address = addressOf(INADDR_ANY, port);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface asks for it
    check(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), "bind");
    check(listen(listener, BACKLOG), "listen");
    return listener;
}

int acceptFrom(int listener) {
    return check(accept(listener, nullptr, nullptr), "accept");
}

int tryConnect(int port) {
    const int connection = check(socket(AF_INET, SOCK_STREAM, 0), "socket");
    const sockaddr_in address = addressOf(INADDR_LOOPBACK, port);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface asks for it
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        setOption(connection, IPPROTO_TCP, TCP_NODELAY, 1);
        return connection;
    }
    const int error = errno;
    close(connection);
    if (error != ECONNREFUSED) {
        throw std::system_error(error, std::generic_category(), "connect");
    }
    return -1;
}

int connectTo(int port) {
    const auto deadline = std::chrono::steady_clock::now() + CONNECT_PATIENCE;
    while (std::chrono::steady_clock::now() < deadline) {
        if (const int connection = tryConnect(port); connection >= 0) {
            return connection;
        }
        std::this_thread::sleep_for(CONNECT_PAUSE);
    }
    throw std::runtime_error("nobody listens on port " + std::to_string(port));
}

}  // namespace reticled::bench
