#pragma once

#include <poll.h>

#include <vector>

#include "bench/common/Work.h"

namespace reticled::bench {

/// Serves any number of clients with one thread: receives, works and replies one request after the
/// other, without handing anything to another thread.
class SingleThreadServer {
public:
    explicit SingleThreadServer(Work work);

    /// Never returns. \throws std::system_error
    [[noreturn]] void run();

private:
    void _serve(pollfd& client);

    Work _work;
    int _listener;
    std::vector<pollfd> _watched;  ///< the listener, then the clients
};

}  // namespace reticled::bench
