// reticled-foreground: the service under a supervisor or on a terminal, which keep its log lines.
#include "service/runService.h"

int main() {
    return reticled::runService();
}
