#include "net/NetCommunicator.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <stdexcept>

#include "base/FreeMemory.h"
#include "base/Log.h"
#include "base/LoggedJson.h"
#include "net/FrameSender.h"

namespace reticled {
namespace {

constexpr int LISTEN_BACKLOG = 10;

/// Of the listening socket, for the connections, which inherit it. The service works without, too.
struct ConnectionOption {
    int level;
    int name;
    int value;
};
constexpr std::array CONNECTION_OPTIONS{
    // Without it a small reply waits for the client's acknowledgement of the one before.
    ConnectionOption{IPPROTO_TCP, TCP_NODELAY, 1},
    // A client that has vanished gives its thread and descriptor back: four minutes after its last byte.
    ConnectionOption{SOL_SOCKET, SO_KEEPALIVE, 1},
    ConnectionOption{IPPROTO_TCP, TCP_KEEPIDLE, 120},
    ConnectionOption{IPPROTO_TCP, TCP_KEEPINTVL, 30},
    ConnectionOption{IPPROTO_TCP, TCP_KEEPCNT, 4},
};

/// Until a descriptor or memory may be free again; at once would burn a core.
constexpr std::chrono::milliseconds ACCEPT_RETRY_PAUSE{10};

/// Replies from this size on are sent without putting header and body together in memory first.
constexpr std::size_t SEPARATE_BODY_BYTES = 65536;

/// Of the listening socket, which is closed: nobody would own it.
[[noreturn]] void failSetup(int socket, const char* message) {
    logSystemError(errno);
    close(socket);
    throw std::runtime_error(message);
}

void setSocketOption(int socket, int option, int value, const char* failureMessage) {
    if (setsockopt(socket, SOL_SOCKET, option, &value, sizeof value) < 0) {
        failSetup(socket, failureMessage);
    }
}

bool isShortageError(int error) {
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

/// Whether the connection has met an error, of which the next receive will tell.
bool hasFailed(int socket) {
    pollfd state{.fd = socket, .events = 0, .revents = 0};
    return poll(&state, 1, 0) > 0 && (state.revents & POLLERR) != 0;
}

/// Fills `buffer` from the connection; less only when the client leaves meanwhile. What came before an
/// error counts as it is, and the next call reports the error.
/// \return the number of bytes, 0 at the connection's end, -1 after an error, which is reported.
ssize_t receive(int socket, void* buffer, std::size_t size) {
    std::size_t received = 0;
    for (;;) {
        // A stopped or frozen process and a debugger interrupt it: it then returns a part, or none.
        const ssize_t count =
            recv(socket, static_cast<char*>(buffer) + received, size - received, MSG_WAITALL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            logSystemError(errno);
            return -1;
        }
        received += static_cast<std::size_t>(count);
        if (count == 0 || received == size || hasFailed(socket)) {
            return static_cast<ssize_t>(received);
        }
    }
}

/// \return nothing at the connection's end.
std::optional<std::string> receiveBody(int socket, int length) {
    // Not a std::string, whose bytes would be written, and so resident, before any have arrived.
    const auto size = static_cast<std::size_t>(length);
    const auto buffer = std::make_unique_for_overwrite<char[]>(size);  // NOLINT(*-avoid-c-arrays)
    const ssize_t received = receive(socket, buffer.get(), size);
    if (received <= 0) {
        return std::nullopt;
    }
    return std::string(buffer.get(), static_cast<std::size_t>(received));
}

/// Clients may end their text with a zero byte; what follows it is not looked at.
bool isJsonUpToZeroByte(const std::string& body) {
    const std::size_t end = body.find('\0');
    return end == std::string::npos ? JsonRetriever::isJson(body)
                                    : JsonRetriever::isJson(body.substr(0, end));
}

/// \return 0 or the errno value of what ended it.
int sendReply(int socket, const std::string& body) {
    FrameSender sender(socket);
    if (body.size() < SEPARATE_BODY_BYTES) {
        return sender.send(JsonRetriever::buildNetPacket(body));
    }
    const int error =
        sender.send(JsonRetriever::buildNetHeader(body.size()), FrameSender::Rest::FOLLOWS);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): characters are bytes
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(body.data());
    return error != 0 ? error : sender.send({bytes, body.size()});
}

}  // namespace

NetCommunicator::NetCommunicator()
    : _jsonRetriever(JsonRetriever::getInstance()),
      _packetStorage(PacketStorage::getInstance()),
      _packetsHandler(PacketsHandler::getInstance()) {
    _openServerSocket();
}

NetCommunicator::~NetCommunicator() {
    if (_serverThread && _serverThread->joinable()) {
        _serverThread->join();
    }
    if (close(_serverSocket) < 0) {
        logSystemError(errno);
    }
}

void NetCommunicator::_openServerSocket() {
    _serverSocket = socket(AF_INET, SOCK_STREAM, 0);
    setSocketOption(_serverSocket, SO_REUSEPORT, 1, "Failed to set REUSE_PORT option");
    setSocketOption(_serverSocket, SO_RCVBUF, RCV_BUFFER_SIZE, "Failed to set rcv buffer size");
    for (const ConnectionOption& option : CONNECTION_OPTIONS) {
        setsockopt(_serverSocket, option.level, option.name, &option.value, sizeof option.value);
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(SERVER_PORT);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface asks for it
    if (bind(_serverSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
        failSetup(_serverSocket, "Cannot bind server socker to PORT 3451");
    }
    if (listen(_serverSocket, LISTEN_BACKLOG) < 0) {
        failSetup(_serverSocket, "Error during attemp to move the socket in listen state");
    }
}

void NetCommunicator::start() {
    _serverThread = std::make_shared<std::thread>(&NetCommunicator::_serverRoutine, this);
    _responseThread = std::make_shared<std::thread>(&NetCommunicator::responseThread, this);
}

void NetCommunicator::join() {
    if (_serverThread && _serverThread->joinable()) {
        _serverThread->join();
    }
}

void NetCommunicator::_serverRoutine() {
    while (!_isStopped) {
        const int socket = accept(_serverSocket, nullptr, nullptr);
        if (socket > 0) {
            _startReader(socket);
            continue;
        }
        const int error = errno;
        logSystemError(error);
        if (isShortageError(error)) {
            std::this_thread::sleep_for(ACCEPT_RETRY_PAUSE);
        }
    }
}

void NetCommunicator::_startReader(int socket) {
    try {
        std::thread(&NetCommunicator::_clientRoutine, this, socket).detach();
    } catch (const std::exception& error) {
        logLine(std::cerr, "_serverRoutine, exception: ", error.what());
        close(socket);
    }
}

void NetCommunicator::_clientRoutine(int socket) {
    try {
        while (!_isStopped && _receiveRequest(socket)) {
        }
    } catch (const std::exception& error) {
        logLine(std::cerr, "_clientRoutine, exception: ", error.what());
    }
    // The response thread does not know: replies still queued for this number are sent to whoever
    // has it by then. Replies carry no other address.
    if (close(socket) < 0) {
        logSystemError(errno);
    }
}

bool NetCommunicator::_receiveRequest(int socket) {
    std::array<std::uint8_t, FRAME_HEADER_SIZE> header{};
    if (receive(socket, header.data(), header.size()) <= 0) {
        return false;
    }
    const int length = JsonRetriever::getPacketLength(header.data());
    if (length <= 0 || length >= RCV_BUFFER_SIZE) {
        // The next bytes are read as a header: there is no other resynchronisation.
        logText(std::cerr, "Failed to retrieve packet length\n");
        return true;
    }
    // In this order: at the end the body goes first, then free memory, and only then is it the next reader's turn.
    std::unique_lock turn(_largeBodyTurn, std::defer_lock);
    const FreeMemoryReturn freeMemoryReturn(static_cast<std::size_t>(length));
    std::optional<std::string> body = receiveBody(socket, length);
    if (!body) {
        return false;
    }
    if (body->size() >= LARGE_TEXT_BYTES) {
        turn.lock();
    }
    if (!isJsonUpToZeroByte(*body)) {
        logText(std::cerr, "Error: received packet isn't json\n");
        return true;
    }
    _packetStorage->push(REQUEST_QUEUE, std::make_shared<Packet>(socket, *std::move(body)));
    return true;
}

void NetCommunicator::responseThread() {
    while (!_isStopped) {
        try {
            _sendNextReply();
        } catch (const std::exception& error) {
            logLine(std::cerr, "responseThread, exception: ", error.what());
        }
    }
}

void NetCommunicator::_sendNextReply() {
    const std::shared_ptr<Packet> packet = _packetStorage->pop(RESPONSE_QUEUE);
    logLine(std::cout, "responseThread", ": msg to send = ", LoggedJson(packet->_data));
    const int socket = packet->_socket;
    if (socket == NO_SOCKET) {
        return;
    }
    const int error = sendReply(socket, packet->_data);
    if (error != 0) {
        logLine(std::cerr, "Error during send response for socket: ", socket);
        logSystemError(error);
    }
}

}  // namespace reticled
