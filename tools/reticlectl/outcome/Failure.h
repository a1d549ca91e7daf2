#pragma once

#include <stdexcept>
#include <string>

#include "tools/reticlectl/outcome/ExitStatus.h"

namespace reticlectl {

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
