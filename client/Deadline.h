#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

namespace reticle {

/// The moment at which a call gives up, however many waits it is made of.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds timeout)
        : _timeout(timeout), _end(Clock::now() + timeout) {}

    [[nodiscard]] std::chrono::milliseconds timeout() const { return _timeout; }

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
};

}  // namespace reticle
