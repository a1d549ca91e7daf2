#pragma once

namespace reticlectl {

/// How the program ends. Scripts rely on the numbers.
enum class ExitStatus : int {
    DONE = 0,
    /// The device said no, or has no reticle of the index that is to be shown.
    REFUSED = 1,
    /// A wrong command line, a file that cannot be read or written, or a text that cannot be sent.
    USAGE = 2,
    CANNOT_CONNECT = 3,
    NO_REPLY = 4,
    MALFORMED_REPLY = 5
};

}  // namespace reticlectl
