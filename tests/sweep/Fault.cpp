#include "tests/sweep/Fault.h"

#include <array>
#include <cstring>

namespace {

constexpr std::array THREAD_NAMES{"main", "worker", "server", "response"};

}  // namespace

std::string threadName(int thread) {
    const auto number = static_cast<std::size_t>(thread);
    return number < THREAD_NAMES.size()
               ? THREAD_NAMES.at(number)
               : "reader" + std::to_string(number - THREAD_NAMES.size() + 1);
}

std::string Fault::text() const {
    const std::string how = error == 0 ? "SHORT" : strerrorname_np(error);
    return site.program + " " + threadName(site.thread) + " " + site.call + " " +
           std::to_string(site.occurrence) + " " + how;
}
