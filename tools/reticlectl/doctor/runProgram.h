#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace reticlectl {

/// What a program that has ended leaves.
struct ProgramRun {
    bool hasSucceeded = false;
    /// Standard output and standard error together.
    std::string output;
};

/// Runs a program, found through PATH, without input, and waits for its end, `longest` at most; then it
/// is killed and counts as failed.
/// \return nothing where there is no such program, or it cannot be started.
[[nodiscard]] std::optional<ProgramRun> runProgram(
    const std::vector<std::string>& command,
    std::chrono::milliseconds longest = std::chrono::seconds(5));

}  // namespace reticlectl
