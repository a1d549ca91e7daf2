#include "tests/support/ChildProcess.h"

#include <sys/wait.h>

#include <csignal>

namespace {

constexpr int SIGNAL_STATUS_BASE = 128;

}  // namespace

ChildProcess::~ChildProcess() {
    if (!isAlive()) {
        return;
    }
    // As a supervisor ends it: stopped or not, and with the time to write what it has counted.
    kill(SIGTERM);
    kill(SIGCONT);
    if (!waitForEnd()) {
        kill(SIGKILL);
        waitpid(_pid, nullptr, 0);
    }
}

bool ChildProcess::isAlive() {
    int status = 0;
    if (!_status && waitpid(_pid, &status, WNOHANG) == _pid) {
        _status = WIFSIGNALED(status) ? SIGNAL_STATUS_BASE + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return !_status;
}

std::optional<int> ChildProcess::waitForEnd(std::chrono::milliseconds bound) {
    static_cast<void>(eventually([this] { return !isAlive(); }, bound));
    return _status;
}

void ChildProcess::kill(int signal) const {
    ::kill(_pid, signal);
}
