#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>

#include "tests/support/Patience.h"

/// A process whose parent we are: one that we started, or a daemon that came to us when its own
/// parent ended. It is ended and reaped with this object.
class ChildProcess {
public:
    explicit ChildProcess(pid_t pid) : _pid(pid) {}
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return _pid; }

    /// Waits for the end. \return the exit status, 128 plus the number of the signal that ended
    /// the process, or nothing when it still runs after `bound`.
    [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds bound = PATIENCE);

    [[nodiscard]] bool isAlive();

    void kill(int signal) const;

private:
    pid_t _pid;
    std::optional<int> _status;
};
