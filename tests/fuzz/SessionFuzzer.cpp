// Input: how the rest is cut into pieces (one byte), then all that a client sends before it leaves.
#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "net/NetCommunicator.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/FileDescriptor.h"
#include "tests/unit/service/peers/NetCommunicatorTestPeer.h"
#include "tests/unit/service/peers/PacketsHandlerTestPeer.h"

namespace reticled {
namespace {

/// Everything is sent before the reader starts, so that no run depends on how threads take turns: it
/// must fit into the kernel's buffer.
constexpr std::size_t MAX_STREAM_BYTES = 65536;
constexpr std::size_t MAX_PIECES = 16;

/// A server whose requests go to a queue of our own, past the process's worker.
class Server {
public:
    Server() { NetCommunicatorTestPeer::useStorage(_net, _storage); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() { PacketsHandlerTestPeer::stopWorker(); }

    /// Has a reader read all of `descriptor`, which it closes.
    void read(int descriptor) { NetCommunicatorTestPeer::clientRoutine(_net, descriptor); }

    /// All requests that are queued.
    [[nodiscard]] std::vector<std::shared_ptr<Packet>> takeRequests() {
        // The queue cannot be asked whether it is empty. Where it has no room for an end, it is
        // full.
        const auto end = std::make_shared<Packet>(NO_SOCKET, "");
        _storage->push(REQUEST_QUEUE, end);
        std::vector<std::shared_ptr<Packet>> requests;
        while (requests.size() < QUEUE_CAPACITY) {
            std::shared_ptr<Packet> packet = _storage->pop(REQUEST_QUEUE);
            if (packet == end) {
                break;
            }
            requests.push_back(std::move(packet));
        }
        return requests;
    }

private:
    std::shared_ptr<PacketStorage> _storage = std::make_shared<PacketStorage>();
    NetCommunicator _net;
};

void sendInPieces(int socket, std::string_view stream, std::uint8_t seed) {
    std::minstd_rand random(seed + 1U);
    for (std::size_t piece = 1; !stream.empty(); ++piece) {
        const std::size_t size = piece < MAX_PIECES ? 1 + random() % stream.size() : stream.size();
        require(send(socket, stream.data(), size, MSG_DONTWAIT) == static_cast<ssize_t>(size),
                "the kernel takes the stream at once");
        stream.remove_prefix(size);
    }
    shutdown(socket, SHUT_WR);
}

bool isJsonUpToZero(const std::string& body) {
    return JsonRetriever::isJson(body.substr(0, body.find('\0')));
}

void play(Server& server, std::string_view stream, std::uint8_t seed) {
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "sockets exist");
    const FileDescriptor client(ends[0], "client");
    sendInPieces(client.get(), stream, seed);
    server.read(ends[1]);
    require(fcntl(ends[1], F_GETFD) < 0, "the reader closes its connection");
    for (const std::shared_ptr<Packet>& request : server.takeRequests()) {
        require(request->_socket == ends[1], "a request knows its connection");
        require(isJsonUpToZero(request->_data), "a request is JSON");
        require(stream.find(request->_data) != stream.npos, "a request is what was sent");
    }
}

}  // namespace
}  // namespace reticled

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static reticled::Server server;
    if (size > 0 && size <= reticled::MAX_STREAM_BYTES) {
        reticled::play(server, toText(data + 1, size - 1), data[0]);
    }
    return 0;
}
