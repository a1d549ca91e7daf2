#include "service/occupyStandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace reticled {
namespace {

/// Where there is no /dev/null, the root directory takes no byte either, and gives none.
int openNothing() {
    // NOLINTBEGIN(cppcoreguidelines-pro-type-vararg): open is what it is
    const int null = open("/dev/null", O_RDWR);
    return null >= 0 ? null : open("/", O_RDONLY);
    // NOLINTEND(cppcoreguidelines-pro-type-vararg)
}

}  // namespace

void occupyStandardStreams() {
    int descriptor = STDIN_FILENO;
    do {
        descriptor = openNothing();
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

}  // namespace reticled
