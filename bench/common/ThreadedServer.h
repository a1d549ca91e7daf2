#pragma once

#include <memory>
#include <string>

#include "bench/common/HandOffQueue.h"
#include "bench/common/Work.h"

namespace reticled::bench {

/// Serves clients with the service's threads: one that accepts, one that reads for each client, one
/// that works, one that sends, and a queue before each of the last two.
class ThreadedServer {
public:
    explicit ThreadedServer(Work work);

    /// Never returns.
    void run();

private:
    struct Request {
        int connection;
        std::string body;
    };
    struct Reply {
        int connection;
        std::shared_ptr<const std::string> body;
    };

    [[noreturn]] void _accept();
    void _read(int connection);
    [[noreturn]] void _workOff();
    [[noreturn]] void _send();

    Work _work;
    HandOffQueue<Request> _requests;
    HandOffQueue<Reply> _replies;
    int _listener = -1;
};

}  // namespace reticled::bench
