#include "service/runService.h"

#include <iostream>

#include "net/NetCommunicator.h"
#include "service/Log.h"

namespace reticled {

int runService() {
    try {
        const auto netCommunicator = NetCommunicator::getInstance();
        netCommunicator->start();
        netCommunicator->join();
    } catch (...) {
        logLine(std::cerr, "Exception is caught in main ");
    }
    return 0;
}

}  // namespace reticled
