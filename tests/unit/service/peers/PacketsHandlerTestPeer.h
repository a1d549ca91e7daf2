#pragma once

#include <memory>

#include "processing/PacketsHandler.h"

namespace reticled {

struct PacketsHandlerTestPeer {
    /// Ends the process's worker, which waits for a request: a process that ends orderly, as tests do
    /// and the service does not, would wait for it.
    static void stopWorker() {
        const auto handler = PacketsHandler::getInstance();
        handler->_isRunning = false;
        handler->_packetStorage->push(REQUEST_QUEUE, std::make_shared<Packet>(NO_SOCKET, ""));
        handler->_handlerThread->join();
    }
};

}  // namespace reticled
