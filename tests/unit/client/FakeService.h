#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "client/Socket.h"

namespace reticle::test {

/// The service's end of one connection. Waits are bounded: a test that hangs fails instead.
class FakePeer {
public:
    explicit FakePeer(Socket socket);

    /// The body of the next request; empty when the client has closed.
    std::string receiveRequest();

    /// Sends bytes as they are. Does not mind a client that is gone.
    void send(std::string_view bytes);

    /// \return whether the client has closed (or sent something) within `timeoutMs`.
    [[nodiscard]] bool hasClosed(int timeoutMs) const;

    /// Returns when the client has closed.
    void waitForClose();

    /// Ends the connection by RST instead of FIN.
    void resetOnClose();

private:
    Socket _socket;
};

/// A TCP server on a loopback port of its own that plays a script to one client after the other.
class FakeService {
public:
    /// Plays a connection; it is closed when the script returns. Runs on the server's thread.
    using Script = std::function<void(FakePeer&)>;

    explicit FakeService(Script script);
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;
    ~FakeService();

    [[nodiscard]] std::uint16_t port() const { return _port; }

private:
    void _serve();

    Script _script;
    Socket _listener;
    std::uint16_t _port;
    std::thread _thread;
};

/// A script that takes one request, notes it, if one came, in `requests` and answers with `bytes`.
/// `requests` must outlive the service and not be read before it has ended or the client has its
/// reply.
FakeService::Script answering(std::string bytes, std::vector<std::string>* requests = nullptr);

/// Asks the kernel for a loopback port that nobody listens on.
std::uint16_t unusedPort();

}  // namespace reticle::test
