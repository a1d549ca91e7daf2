#pragma once

#include <functional>
#include <string>
#include <vector>

/// A private world for the tests: own network (loopback only), own /tmp, own processes.
///
/// The service has fixed ports and fixed paths, so two test runs, or a test run and an installed
/// service, could not share a machine without it. Nothing outside is seen or touched. Works as root
/// and, where the kernel lets ordinary users make namespaces, without.
class Sandbox {
public:
    /// \param keptDirectories directories that stay visible even when they lie below /tmp.
    explicit Sandbox(std::vector<std::string> keptDirectories);

    /// Runs `body` as process 1 of the sandbox and ends this process with what it returned; 128 plus
    /// the signal when a signal ended it. Whatever `body` started ends with it.
    ///
    /// `body` becomes the parent of every daemon that it causes to be started.
    /// \throws std::system_error when the namespaces cannot be had.
    [[noreturn]] void run(const std::function<int()>& body) const;

private:
    [[nodiscard]] int _runInside(const std::function<int()>& body) const;
    void _hideTmp() const;

    std::vector<std::string> _keptDirectories;
};
