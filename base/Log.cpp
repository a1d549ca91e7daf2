#include "base/Log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <type_traits>

namespace reticled {

std::mutex& logMutex() {
    // Detached reader threads may still log while the process exits, and when memory lacks.
    static_assert(std::is_trivially_destructible_v<std::mutex>);
    static constinit std::mutex mutex;
    return mutex;
}

void logText(std::ostream& stream, const char* text) {
    const std::lock_guard lock(logMutex());
    stream.clear();
    stream << text << std::flush;
}

void logSystemError(int error) {
    const std::lock_guard lock(logMutex());
    errno = error;
    std::perror(std::strerror(error));
}

}  // namespace reticled
