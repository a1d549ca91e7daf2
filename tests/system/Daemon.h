#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"
#include "tests/system/Programs.h"

/// The real daemon: the command that starts it, and the process that is left when the command and
/// its child have ended. Killed with this object.
class Daemon {
public:
    /// Starts the daemon with `command` and finds its process.
    /// \throws std::runtime_error when no daemon appears.
    explicit Daemon(const std::vector<std::string>& command = {programs::RETICLED});

    /// \throws std::runtime_error when the client port does not open.
    void waitUntilListening();

    /// The start command: its exit status and what it and the daemon wrote before the daemon left
    /// the terminal.
    [[nodiscard]] Process& command() { return _command; }

    [[nodiscard]] pid_t pid() const { return _daemon.pid(); }
    [[nodiscard]] ProcessInfo info() const { return ProcessInfo(pid()); }
    [[nodiscard]] bool isAlive() { return _daemon.isAlive(); }

    /// See ChildProcess::waitForEnd.
    [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds bound = PATIENCE) {
        return _daemon.waitForEnd(bound);
    }

private:
    Process _command;
    ChildProcess _daemon;
    // The command's child leads the session and ends at once; it must only be reaped.
    ChildProcess _sessionLeader;
};
