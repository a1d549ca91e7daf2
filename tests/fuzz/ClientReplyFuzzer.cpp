// Input: a reply's JSON text; or, when it starts with a zero byte as every frame does, all that a
// service sends before it leaves.
#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <string>

#include "reticle-client/ReticleClient.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/FileDescriptor.h"

namespace {

/// Far more than anything here waits for: the service's bytes are there before they are read.
constexpr std::chrono::seconds TIMEOUT{30};
/// Sent before the client reads, so it must fit into the kernel's buffers.
constexpr std::size_t MAX_STREAM_BYTES = 65536;

/// A service that sends its bytes as soon as a client connects.
class Service {
public:
    Service() : _listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "listening socket") {
        require(listen(_listener.get(), 1) == 0, "a port is free");
        sockaddr_in address{};
        socklen_t size = sizeof address;
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface asks for it
        getsockname(_listener.get(), reinterpret_cast<sockaddr*>(&address), &size);
        _port = ntohs(address.sin_port);
    }

    [[nodiscard]] std::uint16_t port() const { return _port; }

    /// The connection, at whose end it is reset: a closed one would keep its port for a minute.
    [[nodiscard]] FileDescriptor sendToNext(const std::string& stream) const {
        FileDescriptor peer(accept(_listener.get(), nullptr, nullptr), "connection");
        const linger reset{.l_onoff = 1, .l_linger = 0};
        setsockopt(peer.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        require(send(peer.get(), stream.data(), stream.size(), MSG_DONTWAIT | MSG_NOSIGNAL) ==
                    static_cast<ssize_t>(stream.size()),
                "the kernel takes the stream at once");
        shutdown(peer.get(), SHUT_WR);
        return peer;
    }

private:
    FileDescriptor _listener;
    std::uint16_t _port = 0;
};

void receive(const std::string& stream) {
    static const Service service;
    reticle::ReticleClient client("127.0.0.1", service.port(), TIMEOUT);
    const FileDescriptor peer = service.sendToNext(stream);
    try {
        const reticle::Reply reply = client.list();
        require(stream.find(reply.json) != std::string::npos, "a reply is what was sent");
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): told to the user
    }
}

void parse(const std::string& text) {
    try {
        const reticle::Reply reply = reticle::Reply::parse(text);
        require(reply.json == text, "a reply keeps its text");
        static_cast<void>(reticle::resultMeaning(reply.result.value_or("")));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): told to the user
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = toText(data, size);
    if (size > MAX_STREAM_BYTES) {
        return 0;
    }
    if (input.starts_with('\0')) {
        receive(input);
    } else {
        parse(input);
    }
    return 0;
}
