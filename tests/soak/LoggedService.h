#pragma once

#include <sys/types.h>

#include "tests/soak/Ledger.h"
#include "tests/soak/LogReader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileDescriptor.h"
#include "tests/system/ProcessInfo.h"

/// reticled-foreground, its log entered into a ledger. Killed with this object.
class LoggedService {
public:
    /// Starts it and waits until it listens.
    /// \param ledger must outlive this object.
    /// \throws std::runtime_error when it does not.
    explicit LoggedService(Ledger& ledger);

    [[nodiscard]] ProcessInfo info() const { return ProcessInfo(_process.pid()); }
    [[nodiscard]] bool isAlive() { return _process.isAlive(); }

private:
    struct Pipe {
        Pipe();
        FileDescriptor reading;
        FileDescriptor writing;
    };

    [[nodiscard]] static pid_t _start(Pipe& pipe);

    Pipe _pipe;
    // Ends when the process has: destroyed after it.
    LogReader _log;
    ChildProcess _process;
};
