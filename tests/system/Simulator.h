#pragma once

#include <string>
#include <vector>

#include "tests/system/Process.h"

/// The simulated device, as a test engineer starts it. Ends with this object.
class Simulator {
public:
    /// Starts rtos-sim with `options` and waits until it says that it listens.
    /// \throws std::runtime_error when it does not.
    explicit Simulator(const std::vector<std::string>& options = {});

    /// Ends it as Ctrl-C does and waits for the end. \return its exit status.
    [[nodiscard]] int stop();

    /// Ends it without giving it a chance to do anything.
    void kill();

    [[nodiscard]] pid_t pid() const { return _process.pid(); }
    [[nodiscard]] bool isAlive() { return _process.child().isAlive(); }
    [[nodiscard]] std::string output() const { return _process.standardOutput(); }
    [[nodiscard]] std::string errors() const { return _process.standardError(); }

private:
    Process _process;
};
