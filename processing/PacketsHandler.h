#pragma once

#include <atomic>
#include <memory>
#include <thread>

#include "base/SingleInstance.h"
#include "net/PacketStorage.h"
#include "processing/JsonHandlerDirector.h"

namespace reticled {

/// Owns the worker: the one thread that turns requests into replies, one at a time, so that
/// handlers, the RTOS link and the reticle files need no locks.
class PacketsHandler : public SingleInstance<PacketsHandler> {
public:
    /// Starts the worker.
    /// \throws std::system_error when the thread cannot be started.
    PacketsHandler();

    PacketsHandler(const PacketsHandler&) = delete;
    PacketsHandler& operator=(const PacketsHandler&) = delete;

    /// Stops and joins the worker, which first finishes the request that it is at, or, where it
    /// waits for one, the next. The service never gets here: it ends without destroying anything.
    ~PacketsHandler();

private:
    friend struct PacketsHandlerTestPeer;

    /// The worker's body: takes a request, has its handler make the reply, queues the reply in the
    /// same packet. The one place that turns a failed request into its log line and no reply.
    void _handlerRoutine();

    /// One request. \throws whatever its handler throws.
    void _handleNextPacket();

    std::shared_ptr<PacketStorage> _packetStorage;
    std::shared_ptr<JsonHandlerDirector> _handlerDirector;
    std::atomic<bool> _isRunning;
    std::shared_ptr<std::thread> _handlerThread;
};

}  // namespace reticled
