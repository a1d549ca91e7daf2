#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// A user to run programs as: the process limit does not bind the machine's root. In a user
/// namespace of one user there is nobody else to be, and that user is not the machine's root.
class OrdinaryUser {
public:
    /// \param number that no other test uses: the limit counts all processes of a user.
    constexpr explicit OrdinaryUser(unsigned number) : _number(number) {}

    /// `command`, run as this user.
    [[nodiscard]] std::vector<std::string> command(const std::vector<std::string>& command) const;

    /// Sets the soft limit of processes and threads of a process of this user.
    void limitThreads(pid_t pid, unsigned limit) const;

    /// A copy of the foreground program that every user may run: the build directory may be closed
    /// to others.
    [[nodiscard]] static std::string foregroundProgram();

private:
    [[nodiscard]] bool _exists() const;

    unsigned _number;
};
