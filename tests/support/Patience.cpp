#include "tests/support/Patience.h"

#include <thread>

namespace {

constexpr std::chrono::milliseconds POLL_INTERVAL{2};

}  // namespace

bool eventually(const std::function<bool()>& holds, std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(POLL_INTERVAL);
    }
    return true;
}
