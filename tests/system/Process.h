#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/FileDescriptor.h"

/// A program that we run, its standard streams captured in memory. Ends with this object.
class Process {
public:
    /// Starts `command` (program, found through PATH, and arguments) with `input` as its standard
    /// input. A program that cannot be run ends with status 127.
    explicit Process(const std::vector<std::string>& command, const std::string& input = {});

    /// All that the program (and what it forked) has written so far.
    [[nodiscard]] std::string standardOutput() const;
    [[nodiscard]] std::string standardError() const;

    [[nodiscard]] ChildProcess& child() { return _child; }
    [[nodiscard]] pid_t pid() const { return _child.pid(); }

    /// See ChildProcess::waitForEnd.
    [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds bound = PATIENCE) {
        return _child.waitForEnd(bound);
    }

private:
    [[nodiscard]] pid_t _start(const std::vector<std::string>& command) const;

    FileDescriptor _input;
    FileDescriptor _output;
    FileDescriptor _error;
    ChildProcess _child;
};
