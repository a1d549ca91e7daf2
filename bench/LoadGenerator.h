#pragma once

#include <poll.h>

#include <chrono>
#include <string>
#include <vector>

namespace reticled::bench {

/// Plays the clients of one scenario: every client sends the same request and must get the same
/// reply, byte for byte. One request in flight for each connection.
class LoadGenerator {
public:
    struct Result {
        std::chrono::nanoseconds elapsed;
        int wrong;  ///< replies that differ from the expected one; the run ends at the first
        int lost;   ///< replies that had not come 10 s after the last byte of any
    };

    /// Connects; waits until somebody listens.
    /// \param request, reply bodies, without their frame headers.
    LoadGenerator(const std::string& request, const std::string& reply, int connections);

    /// Has the first `connections` clients send `requests` requests in all, each as soon as its
    /// last reply has come. Not to be called again after wrong or lost replies.
    [[nodiscard]] Result run(int connections, int requests);

    /// Has the first client send `count` requests in one write.
    /// \return how long after the write each reply had arrived whole; fewer when one was wrong or
    ///         lost.
    [[nodiscard]] std::vector<std::chrono::nanoseconds> burst(int count);

    /// Opens `count` more connections that stay silent.
    static void addSilentClients(int count);

private:
    enum class Progress { PARTIAL, COMPLETE, WRONG };

    struct Client {
        int connection = -1;
        std::size_t received = 0;
    };

    void _sendRequest(Client& client);
    /// Takes what has arrived of the client's reply.
    [[nodiscard]] Progress _receive(Client& client);

    std::string _request;  ///< whole frames from here on
    std::string _reply;
    std::string _buffer;  ///< what has arrived, `_reply.size()` bytes for each client
    std::vector<Client> _clients;
    std::vector<pollfd> _watched;  ///< one for each client, in the same order
};

}  // namespace reticled::bench
