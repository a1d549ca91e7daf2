// reticled: the service as a daemon.
#include "service/daemonize.h"
#include "service/runService.h"

int main() {
    reticled::daemonize();
    return reticled::runService();
}
