#include "service/runService.h"

#include <malloc.h>

#include <cstdio>
#include <iostream>

#include "net/NetCommunicator.h"
#include "service/Log.h"

namespace reticled {
namespace {

/// Blocks from this size on go back to the system when they are freed. Left to itself, the
/// allocator raises its limit with the first large request and keeps the memory of the largest ones
/// for good.
constexpr int LARGE_BLOCK_BYTES = 128 * 1024;

}  // namespace

int runService() {
    // One write for a line instead of one for each of its pieces.
    std::cerr.unsetf(std::ios::unitbuf);
    std::setvbuf(stderr, nullptr, _IOLBF, BUFSIZ);
    mallopt(M_MMAP_THRESHOLD, LARGE_BLOCK_BYTES);
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
