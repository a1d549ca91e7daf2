#include "base/Log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace reticled {

std::mutex& logMutex() {
    // Never destroyed: detached reader threads may still log while the process exits.
    static auto* const mutex = new std::mutex;
    return *mutex;
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
