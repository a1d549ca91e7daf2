#include "service/runService.h"

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "base/FreeMemory.h"
#include "base/Log.h"
#include "net/NetCommunicator.h"

namespace reticled {
namespace {

// What clients' largest requests took must go back to the system; what every command takes anew must
// not, since getting pages costs more than the work on them. Left to itself, the allocator keeps the
// memory of the largest requests for good, and in every reader thread's arena.
constexpr int ARENAS = 2;

void configureAllocator() {
    mallopt(M_MMAP_THRESHOLD, RETURNED_BLOCK_BYTES);
    mallopt(M_TRIM_THRESHOLD, KEPT_FREE_BYTES);
    mallopt(M_ARENA_MAX, ARENAS);
}

/// One write for a line instead of one for each of its pieces.
void configureErrorStream() {
    std::cerr.unsetf(std::ios::unitbuf);
    std::setvbuf(stderr, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace

int runService() {
    configureErrorStream();
    configureAllocator();
    try {
        const auto netCommunicator = NetCommunicator::getInstance();
        netCommunicator->start();
        netCommunicator->join();
    } catch (...) {
        logLine(std::cerr, "Exception is caught in main ");
        // At once: threads that run already would work on destroyed objects, or wait for a peer. Each
        // line of the log was flushed when it was written.
        std::quick_exit(EXIT_SUCCESS);
    }
    return EXIT_SUCCESS;
}

}  // namespace reticled
