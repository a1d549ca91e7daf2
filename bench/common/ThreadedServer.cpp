#include "bench/common/ThreadedServer.h"

#include <unistd.h>

#include <optional>
#include <thread>
#include <utility>

#include "bench/common/Frame.h"
#include "bench/common/Sockets.h"

namespace reticled::bench {

ThreadedServer::ThreadedServer(Work work) : _work(std::move(work)) {}

void ThreadedServer::run() {
    std::thread worker(&ThreadedServer::_workOff, this);
    _listener = listenOn(CLIENT_PORT);
    std::thread accepter(&ThreadedServer::_accept, this);
    std::thread sender(&ThreadedServer::_send, this);
    accepter.join();
    worker.join();
    sender.join();
}

void ThreadedServer::_accept() {
    for (;;) {
        std::thread(&ThreadedServer::_read, this, acceptFrom(_listener)).detach();
    }
}

void ThreadedServer::_read(int connection) {
    while (std::optional<std::string> body = receiveFrame(connection)) {
        _requests.push({connection, *std::move(body)});
    }
    close(connection);
}

void ThreadedServer::_workOff() {
    for (;;) {
        const Request request = _requests.pop();
        _replies.push({request.connection, _work(request.body)});
    }
}

void ThreadedServer::_send() {
    for (;;) {
        const Reply reply = _replies.pop();
        sendFrame(reply.connection, *reply.body);
    }
}

}  // namespace reticled::bench
