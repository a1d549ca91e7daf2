#include "bench/LoadGenerator.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <span>

#include "bench/common/Sockets.h"
#include "client/FrameFormat.h"

namespace reticled::bench {
namespace {

constexpr std::chrono::milliseconds PATIENCE = std::chrono::seconds(10);

void sendAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const int sent = check(
            static_cast<int>(send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL)), "send");
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

bool waitForBytes(std::span<pollfd> watched) {
    return check(poll(watched.data(), watched.size(), static_cast<int>(PATIENCE.count())), "poll") >
           0;
}

}  // namespace

LoadGenerator::LoadGenerator(const std::string& request, const std::string& reply, int connections)
    : _request(reticle::encodeFrame(request)),
      _reply(reticle::encodeFrame(reply)),
      _buffer(_reply.size() * static_cast<std::size_t>(connections), '\0') {
    for (int i = 0; i < connections; ++i) {
        const int connection = connectTo(CLIENT_PORT);
        _clients.push_back({.connection = connection});
        _watched.push_back({.fd = connection, .events = POLLIN, .revents = 0});
    }
}

LoadGenerator::Result LoadGenerator::run(int connections, int requests) {
    const auto begin = std::chrono::steady_clock::now();
    const std::span clients = std::span(_clients).first(static_cast<std::size_t>(connections));
    const std::span watched = std::span(_watched).first(clients.size());
    int sent = 0;
    int replies = 0;
    for (Client& client : clients) {
        _sendRequest(client);
        ++sent;
    }
    const auto end = [&](int wrong, int lost) -> Result {
        return {std::chrono::steady_clock::now() - begin, wrong, lost};
    };
    while (replies < sent) {
        if (!waitForBytes(watched)) {
            return end(0, sent - replies);
        }
        for (std::size_t i = 0; i < clients.size(); ++i) {
            if (watched[i].revents == 0) {
                continue;
            }
            const Progress progress = _receive(clients[i]);
            if (progress == Progress::WRONG) {
                return end(1, 0);
            }
            if (progress == Progress::COMPLETE) {
                ++replies;
                if (sent < requests) {
                    _sendRequest(clients[i]);
                    ++sent;
                }
            }
        }
    }
    return end(0, 0);
}

std::vector<std::chrono::nanoseconds> LoadGenerator::burst(int count) {
    std::string requests;
    for (int i = 0; i < count; ++i) {
        requests += _request;
    }
    Client& client = _clients.front();
    client.received = 0;
    std::vector<std::chrono::nanoseconds> arrivals;
    const auto begin = std::chrono::steady_clock::now();
    sendAll(client.connection, requests);
    while (arrivals.size() < static_cast<std::size_t>(count)) {
        if (!waitForBytes(std::span(_watched).first(1))) {
            break;
        }
        const Progress progress = _receive(client);
        if (progress == Progress::WRONG) {
            break;
        }
        if (progress == Progress::COMPLETE) {
            arrivals.emplace_back(std::chrono::steady_clock::now() - begin);
            client.received = 0;
        }
    }
    return arrivals;
}

void LoadGenerator::addSilentClients(int count) {
    for (int i = 0; i < count; ++i) {
        static_cast<void>(connectTo(CLIENT_PORT));
    }
}

void LoadGenerator::_sendRequest(Client& client) {
    client.received = 0;
    sendAll(client.connection, _request);
}

LoadGenerator::Progress LoadGenerator::_receive(Client& client) {
    const auto number = static_cast<std::size_t>(&client - _clients.data());
    char* const buffer = _buffer.data() + number * _reply.size();
    // Never more than the rest of this reply, so that the next one starts at the buffer's start.
    const ssize_t count = recv(client.connection, buffer + client.received,
                               _reply.size() - client.received, MSG_DONTWAIT);
    if (count <= 0) {
        return Progress::WRONG;
    }
    client.received += static_cast<std::size_t>(count);
    const bool hasHeader = client.received >= reticle::FRAME_HEADER_BYTES;
    // A reply of another length never fills the buffer, or leaves bytes for the next: look early.
    if (hasHeader && std::memcmp(buffer, _reply.data(), reticle::FRAME_HEADER_BYTES) != 0) {
        return Progress::WRONG;
    }
    if (client.received < _reply.size()) {
        return Progress::PARTIAL;
    }
    return std::memcmp(buffer, _reply.data(), _reply.size()) == 0 ? Progress::COMPLETE
                                                                  : Progress::WRONG;
}

}  // namespace reticled::bench
