#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

namespace reticle {

/// The moment at which a call gives up, however many waits it is made of.
class Deadline {
public:
    /// \param cancelDescriptor the call also gives up when this descriptor is readable; negative for
    /// none.
    explicit Deadline(std::chrono::milliseconds timeout, int cancelDescriptor = -1)
        : _timeout(timeout), _end(Clock::now() + timeout), _cancelDescriptor(cancelDescriptor) {}

    [[nodiscard]] std::chrono::milliseconds timeout() const { return _timeout; }

    [[nodiscard]] int cancelDescriptor() const { return _cancelDescriptor; }

    /// What is left as poll(2) takes it, in milliseconds, rounded up: 0 only when the moment has
    /// passed.
    [[nodiscard]] int leftMs() const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(_end - Clock::now()).count();
        using Count = decltype(left);
        return static_cast<int>(std::clamp<Count>(left, 0, std::numeric_limits<int>::max()));
    }

private:
    using Clock = std::chrono::steady_clock;

    std::chrono::milliseconds _timeout;
    Clock::time_point _end;
    int _cancelDescriptor;
};

}  // namespace reticle
