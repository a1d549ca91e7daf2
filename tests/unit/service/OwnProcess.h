#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/support/ChildProcess.h"
#include "tests/unit/service/MemoryFile.h"

/// A fork of this process, its standard streams taken. Ends with this object.
///
/// For what ends a process, changes it for good, or needs single instances that nobody has used.
/// Fork before this process has threads: suites that do are named "...DeathTest", which the test
/// runner takes first.
class OwnProcess {
public:
    /// Runs `body` in the fork; its result becomes the exit status.
    /// \throws std::system_error when there can be no fork.
    explicit OwnProcess(const std::function<int()>& body);

    /// All that the process, and what it forked, has written so far.
    [[nodiscard]] std::string out() const { return _out.content(); }
    [[nodiscard]] std::string err() const { return _err.content(); }

    [[nodiscard]] bool isAlive() { return _child.isAlive(); }

    /// See ChildProcess::waitForEnd.
    [[nodiscard]] std::optional<int> waitForEnd() { return _child.waitForEnd(); }

private:
    [[nodiscard]] pid_t _start(const std::function<int()>& body) const;

    MemoryFile _out;
    MemoryFile _err;
    ChildProcess _child;
};

/// Ends this process without exit handlers, as a fork that may not run its parent's does. What a
/// coverage build has counted in it is kept.
[[noreturn]] void endAtOnce(int status);

/// Makes the kernel refuse the system call `number` with `error` to this thread, and to those that it
/// starts, for the rest of its life. Call it in a process, or a thread, of its own.
/// \param onlyThirdArgument refuse only calls with this third argument.
/// \throws std::system_error when the kernel has no such filters.
void refuseSystemCall(unsigned number, int error, std::optional<unsigned> onlyThirdArgument = {});
