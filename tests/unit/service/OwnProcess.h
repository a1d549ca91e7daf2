#pragma once

#include <functional>
#include <optional>
#include <string>

/// What a process of its own left behind.
struct Outcome {
    std::optional<int>
        status;       ///< its exit status, 128 plus a signal; nothing if it had to be killed
    std::string out;  ///< its standard output
    std::string err;  ///< its standard error
};

/// Runs `body` in a fork of this process and waits, with a bound, for its end.
///
/// For what ends a process, changes it for good, or needs single instances that nobody has used.
/// Fork before this process has threads: suites that call this are named "...DeathTest", which the
/// test runner takes first.
/// \param body its result becomes the exit status; runs with standard streams of its own.
/// \param isEnough asked again and again; ends the process as soon as it says yes.
[[nodiscard]] Outcome runInOwnProcess(
    const std::function<int()>& body, const std::function<bool()>& isEnough = [] { return false; });

/// Makes the kernel refuse the system call `number` with `error` for the rest of this process's
/// life. Call it in a process of its own.
/// \param onlyThirdArgument refuse only calls with this third argument.
/// \throws std::system_error when the kernel has no such filters.
void refuseSystemCall(unsigned number, int error, std::optional<unsigned> onlyThirdArgument = {});
