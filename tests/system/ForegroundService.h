#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"
#include "tests/system/Programs.h"

/// The service in the foreground, for tests that read its log lines. Killed with this object.
class ForegroundService {
public:
    explicit ForegroundService(
        const std::vector<std::string>& command = {programs::RETICLED_FOREGROUND})
        : _process(command) {}

    /// \throws std::runtime_error when the client port does not open.
    void waitUntilListening();

    /// All log text so far: progress lines and error lines.
    [[nodiscard]] std::string progress() const { return _process.standardOutput(); }
    [[nodiscard]] std::string errors() const { return _process.standardError(); }

    /// Waits until the progress or error text holds `text`, `times` times or more. A failure tells
    /// what there was instead.
    [[nodiscard]] testing::AssertionResult hasProgress(const std::string& text,
                                                       std::size_t times = 1) const;
    [[nodiscard]] testing::AssertionResult hasError(const std::string& text,
                                                    std::size_t times = 1) const;

    [[nodiscard]] pid_t pid() const { return _process.pid(); }
    [[nodiscard]] ProcessInfo info() const { return ProcessInfo(pid()); }
    [[nodiscard]] bool isAlive() { return _process.child().isAlive(); }

    /// See ChildProcess::waitForEnd.
    [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds bound = PATIENCE) {
        return _process.waitForEnd(bound);
    }

private:
    Process _process;
};
