#include "bench/common/SingleThreadServer.h"

#include <unistd.h>

#include <utility>

#include "bench/common/Frame.h"
#include "bench/common/Sockets.h"

namespace reticled::bench {
namespace {

constexpr int NO_TIMEOUT = -1;
/// poll passes over negative descriptors.
constexpr int GONE = -1;

}  // namespace

SingleThreadServer::SingleThreadServer(Work work)
    : _work(std::move(work)), _listener(listenOn(CLIENT_PORT)) {}

void SingleThreadServer::run() {
    _watched.push_back({.fd = _listener, .events = POLLIN, .revents = 0});
    for (;;) {
        check(poll(_watched.data(), _watched.size(), NO_TIMEOUT), "poll");
        for (std::size_t i = 1; i < _watched.size(); ++i) {
            if (_watched[i].revents != 0) {
                _serve(_watched[i]);
            }
        }
        if (_watched.front().revents != 0) {
            _watched.push_back({.fd = acceptFrom(_listener), .events = POLLIN, .revents = 0});
        }
    }
}

void SingleThreadServer::_serve(pollfd& client) {
    if (const auto request = receiveFrame(client.fd)) {
        sendFrame(client.fd, *_work(*request));
    } else {
        close(std::exchange(client.fd, GONE));
    }
}

}  // namespace reticled::bench
