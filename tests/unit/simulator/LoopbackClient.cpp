#include "tests/unit/simulator/LoopbackClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace sim::test {

namespace {

constexpr timeval TIMEOUT{20, 0};
constexpr std::size_t SERVICE_RECV_BYTES = 1024;

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

}  // namespace

LoopbackClient::LoopbackClient(std::uint16_t port)
    : _socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &TIMEOUT, sizeof TIMEOUT);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what the sockets API asks for.
    if (connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        close(_socket);
        throw std::system_error(error, std::generic_category(), "connect");
    }
}

LoopbackClient::~LoopbackClient() {
    close(_socket);
}

void LoopbackClient::send(const std::string& text) const {
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t count = ::send(_socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count < 0) {
            fail("send");
        }
        sent += static_cast<std::size_t>(count);
    }
}

std::string LoopbackClient::receive() const {
    std::array<char, SERVICE_RECV_BYTES> buffer{};
    const ssize_t count = recv(_socket, buffer.data(), buffer.size(), 0);
    if (count < 0) {
        fail("recv");
    }
    return {buffer.data(), static_cast<std::size_t>(count)};
}

std::string LoopbackClient::exchange(const std::string& text) const {
    send(text);
    return receive();
}

}  // namespace sim::test
