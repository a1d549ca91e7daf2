#pragma once

#include <stdexcept>
#include <string>

namespace reticlectl {

/// How the program ends. Scripts rely on the numbers.
enum class ExitStatus : int {
    DONE = 0,
    /// The device said no, or has no reticle of the index that is to be shown; the doctor found
    /// something bad.
    REFUSED = 1,
    /// A wrong command line, a file that cannot be read or written, or a text that cannot be sent.
    USAGE = 2,
    CANNOT_CONNECT = 3,
    NO_REPLY = 4,
    MALFORMED_REPLY = 5,
    /// Ctrl-C during a change, as shells tell the end by that signal.
    INTERRUPTED = 130
};

/// A command that cannot go on, for a reason that the client library does not know.
class Failure final : public std::runtime_error {
public:
    /// \param message one line that says what happened and what to check.
    Failure(ExitStatus status, const std::string& message)
        : std::runtime_error(message), _status(status) {}

    [[nodiscard]] ExitStatus status() const { return _status; }

private:
    ExitStatus _status;
};

}  // namespace reticlectl
