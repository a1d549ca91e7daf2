// reticled-foreground: the service under a supervisor or on a terminal, which keep its log lines.
#include <fcntl.h>
#include <unistd.h>

#include "service/runService.h"

namespace {

/// Points standard streams that the starter closed at /dev/null. Otherwise the service's first socket
/// would take their number, and the log would go to the RTOS.
void occupyStandardStreams() {
    int descriptor = STDIN_FILENO;
    do {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

}  // namespace

int main() {
    occupyStandardStreams();
    return reticled::runService();
}
