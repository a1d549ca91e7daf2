// reticled: the service as a daemon.
#include "service/daemonize.h"
#include "service/occupyStandardStreams.h"
#include "service/runService.h"

int main() {
    reticled::daemonize();
    // Where there is no /dev/null, they are still closed.
    reticled::occupyStandardStreams();
    return reticled::runService();
}
