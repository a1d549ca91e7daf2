#pragma once

#include <string>
#include <vector>

#include "tests/system/Daemon.h"
#include "tests/system/Process.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

/// Tests of example clients between the real daemon and a simulated device with its eight reticles.
class ExampleTest : public SystemTest {
protected:
    /// What one run of an example gave.
    struct Run {
        int status;
        std::string output;
        std::string error;
    };

    ExampleTest() { service.waitUntilListening(); }

    /// \throws std::bad_optional_access when the program does not end.
    [[nodiscard]] static Run run(const std::vector<std::string>& command) {
        Process process(command);
        const int status = process.waitForEnd().value();
        return {status, process.standardOutput(), process.standardError()};
    }

    Simulator simulator;
    Daemon service;
};
