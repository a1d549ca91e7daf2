#pragma once

#include "rtos/LocalCommunicator.h"

namespace reticled {

struct LocalCommunicatorTestPeer {
    static int socket(const LocalCommunicator& link) { return link._socket; }
    static bool isConnected(const LocalCommunicator& link) { return link._isConnected; }
};

}  // namespace reticled
