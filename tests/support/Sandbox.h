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

    /// Runs `body` in the sandbox and ends this process with what it returned; 128 plus the signal
    /// when a signal ended it. Whatever `body` started ends with it.
    ///
    /// `body` becomes the parent of every daemon that it causes to be started.
    /// \throws std::system_error when the namespaces cannot be had.
    [[noreturn]] void run(const std::function<int()>& body) const;

    /// Gives the calling process, inside a sandbox, a network of its own that nothing has used yet:
    /// ports of connections that have just ended stay taken for a minute.
    /// \throws std::system_error when it cannot be had.
    static void renewNetwork();

private:
    void _prepare() const;
    void _hideTmp() const;

    std::vector<std::string> _keptDirectories;
};
