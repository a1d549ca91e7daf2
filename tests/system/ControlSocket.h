#pragma once

#include <string>

#include "tests/support/Connection.h"

/// A client of the simulator's control socket that is not rtos-sim itself. All operations throw
/// std::system_error.
class ControlSocket {
public:
    explicit ControlSocket(const std::string& path);

    /// Sends a command, a JSON array, and the end of its line.
    void send(const std::string& command) { _connection.send(command + '\n'); }

    /// The next line without its end; empty when the simulator has closed.
    [[nodiscard]] std::string receiveLine();

    /// What `command` gives.
    [[nodiscard]] static std::string ask(const std::string& path, const std::string& command);

private:
    Connection _connection;
    std::string _received;
};
