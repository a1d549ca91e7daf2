#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "base/SingleInstance.h"
#include "net/PacketStorage.h"
#include "processing/JsonRetriever.h"
#include "processing/PacketsHandler.h"

namespace reticled {

inline constexpr int SERVER_PORT = 3451;
/// Kernel receive buffer of a connection, and the body length from which on frames are refused.
inline constexpr int RCV_BUFFER_SIZE = 4194304;

/// The TCP server for clients, on all IPv4 addresses: a server thread that accepts, a detached
/// reader thread per connection, which queues its requests, and the response thread, which sends
/// the replies.
class NetCommunicator : public SingleInstance<NetCommunicator> {
public:
    /// Builds all other components, starts the worker and listens on SERVER_PORT. Main thread.
    /// \throws std::runtime_error when the port cannot be listened on; what other components throw.
    NetCommunicator();

    NetCommunicator(const NetCommunicator&) = delete;
    NetCommunicator& operator=(const NetCommunicator&) = delete;

    /// Waits for the server thread and closes the port. The service never gets here: it ends without
    /// destroying anything.
    ~NetCommunicator();

    /// Starts the server thread, then the response thread. Main thread, once.
    /// \throws std::system_error when a thread cannot be started.
    void start();

    /// Waits for the server thread, in effect for ever. Main thread.
    void join();

private:
    friend struct NetCommunicatorTestPeer;

    void _openServerSocket();

    void _serverRoutine();
    void _startReader(int socket);

    /// A reader thread's body: queues request after request until the client leaves, then closes
    /// `socket`, which it owns.
    void _clientRoutine(int socket);

    /// Reads one frame and queues its body. False when the connection is at its end.
    [[nodiscard]] bool _receiveRequest(int socket);

    /// The response thread's body, the only writer on client connections.
    void responseThread();
    void _sendNextReply();

    int _serverSocket = -1;
    std::mutex
        _largeBodyTurn;  ///< held by the reader that parses a large body: one at a time, for the memory it takes
    std::atomic<bool> _isStopped{false};
    std::shared_ptr<std::thread> _serverThread;
    /// Held as each component holds those that it asks for; its operations are static.
    std::shared_ptr<JsonRetriever> _jsonRetriever;
    std::shared_ptr<PacketStorage> _packetStorage;
    std::shared_ptr<PacketsHandler> _packetsHandler;  ///< held so that the worker exists
    std::shared_ptr<std::thread> _responseThread;
};

}  // namespace reticled
