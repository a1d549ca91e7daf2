#include "service/daemonize.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>

#include "base/Log.h"

namespace reticled {
namespace {

/// Goes on in a child of the calling process, or in this process if there can be none.
void continueInChild(const char* childMessage) {
    const pid_t child = fork();
    if (child < 0) {
        logSystemError(errno);
    } else if (child > 0) {
        std::exit(EXIT_SUCCESS);
    } else {
        std::cout << childMessage;
        std::cout.put('\n').flush();
    }
}

/// Closes the descriptors `first` to `end` - 1 and reports each that would not close.
void closeEach(int first, int end) {
    for (int descriptor = first; descriptor < end; ++descriptor) {
        if (close(descriptor) < 0) {
            logSystemError(errno);
        }
    }
}

void closeAllDescriptors() {
    const long limit = sysconf(_SC_OPEN_MAX);
    if (limit <= 0) {
        return;
    }
    const int end = static_cast<int>(limit);
    const int firstOther = STDERR_FILENO + 1;
    closeEach(STDIN_FILENO, end < firstOther ? end : firstOther);
    // From here on no report can be seen. One call instead of one per descriptor: the limit may be
    // in the millions, and the time until the service listens must not depend on it.
    if (end > firstOther &&
        close_range(static_cast<unsigned>(firstOther), static_cast<unsigned>(end - 1), 0) < 0) {
        closeEach(firstOther, end);
    }
}

void pointStandardStreamsAtNull() {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    if (open("/dev/null", O_RDWR) != STDIN_FILENO) {
        std::cout << "Error: stdin wasn't closed successfully";
        std::cout.put('\n').flush();
    }
    dup2(STDIN_FILENO, STDOUT_FILENO);
    dup2(STDIN_FILENO, STDERR_FILENO);
}

}  // namespace

void daemonize() {
    continueInChild("1st fork sucess");
    setsid();
    continueInChild("2nd fork sucess");
    closeAllDescriptors();
    pointStandardStreamsAtNull();
}

}  // namespace reticled
