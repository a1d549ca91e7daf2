#pragma once

#include <chrono>
#include <csignal>

namespace reticlectl {

/// Keeps Ctrl-C (SIGINT) from ending the process as long as it lives; a descriptor tells that it
/// was pressed instead. One at a time, in a process without other threads.
class InterruptSignal {
public:
    /// \throws Failure (USAGE) where there is no descriptor for it.
    InterruptSignal();
    InterruptSignal(const InterruptSignal&) = delete;
    InterruptSignal& operator=(const InterruptSignal&) = delete;
    ~InterruptSignal();

    /// Readable from Ctrl-C on.
    [[nodiscard]] int descriptor() const { return _descriptor; }

    /// Waits for Ctrl-C. \return whether it was pressed, before or within `time`.
    [[nodiscard]] bool waitFor(std::chrono::nanoseconds time) const;

private:
    sigset_t _previousMask{};
    int _descriptor = -1;
};

}  // namespace reticlectl
