#pragma once

#include <netinet/in.h>
#include <sys/types.h>

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "base/SingleInstance.h"
#include "processing/JsonRetriever.h"

namespace reticled {

inline constexpr auto RTOS_ADDRESS = "127.0.0.1";
inline constexpr int RTOS_PORT = 3425;
/// Longest answer of the RTOS.
inline constexpr int RTOS_BUFFER_SIZE = 1024;
/// How long the RTOS may take for an answer.
inline constexpr std::chrono::seconds RTOS_RECV_TIMEOUT{5};

/// The link to the RTOS: one TCP connection, opened by the first exchange and kept.
///
/// A link that is lost stays lost until the service is restarted, on purpose: whoever supervises
/// the service, not the service itself, decides when to start anew. Worker thread only.
class LocalCommunicator : public SingleInstance<LocalCommunicator> {
public:
    /// Prepares the socket. Failures are reported and come back as failing exchanges.
    LocalCommunicator();

    LocalCommunicator(const LocalCommunicator&) = delete;
    LocalCommunicator& operator=(const LocalCommunicator&) = delete;
    ~LocalCommunicator();

    /// Sends `request` and returns the RTOS's answer, which is JSON.
    ///
    /// The RTOS answers each request with one text of at most 1024 bytes that arrives in one piece;
    /// what comes later or beyond is taken as the start of the next answer. Blocks for at most 5 s
    /// after the request is out.
    /// \throws std::runtime_error when the link cannot be opened or is lost (it is then closed for
    ///         good), when sending fails, or when the answer is not JSON (the link stays open).
    [[nodiscard]] std::string send_and_get(const std::string& request);

    /// Closes the link for good.
    void close();

    /// Whether the last answer is JSON.
    [[nodiscard]] bool _isRecvJsonValid() const;

private:
    friend struct LocalCommunicatorTestPeer;

    void _setRecvTimeout(std::chrono::microseconds duration) const;
    void _connectOnce();
    void _send(const std::string& request) const;
    /// Receives into _buffer, within RTOS_RECV_TIMEOUT however often it is interrupted. \return what recv does.
    [[nodiscard]] ssize_t _waitForAnswer();
    void _receive();

    int _socket;
    /// Held as each component holds those that it asks for; its operations are static.
    std::shared_ptr<JsonRetriever> _jsonRetriever = JsonRetriever::getInstance();
    // One byte more than the RTOS may send: a full answer is terminated too.
    std::array<char, RTOS_BUFFER_SIZE + 1> _buffer{};
    std::string _recvJson;  ///< the answer of the current exchange
    sockaddr_in _serverAddr{};
    std::atomic<bool> _isConnected{false};
};

}  // namespace reticled
