#pragma once

#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/sweep/Device.h"
#include "tests/sweep/SweptService.h"

/// What deviates from a run without a fault, as a text that explanations name; empty for nothing.
using Deviation = std::string;

/// All commands, one after the other, of a client that leaves and of one that comes.
namespace story {

/// Writes the list and the reticles of the device.
void prepare(const FlashFiles& flash);

/// How the requests of a story ended.
struct Result {
    int served = 0;
    int lost = 0;  ///< without a reply, but with a line in the log
    std::vector<Deviation> deviations;
};

/// Plays it. A request is given up when the log says that it has failed, its connection or the
/// service has ended, or nothing comes for longer than the service may take.
[[nodiscard]] Result play(SweptService& service, Device& device);

}  // namespace story
