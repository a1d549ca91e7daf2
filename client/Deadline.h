#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <utility>

namespace reticle {

/// The moment at which a call gives up, however many waits it is made of.
class Deadline {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// How long a wait lasts before it is told.
    static constexpr int TOLD_WAIT_MS = 1000;

    /// \param cancelDescriptor the call also gives up when this descriptor is readable; negative for
    ///        none.
    /// \param waitListener told how much time has passed, after each TOLD_WAIT_MS in which nothing
    ///        happened, when there is one.
    explicit Deadline(Milliseconds timeout, int cancelDescriptor = -1,
                      std::function<void(Milliseconds passed)> waitListener = {})
        : _timeout(timeout),
          _end(Clock::now() + timeout),
          _cancelDescriptor(cancelDescriptor),
          _waitListener(std::move(waitListener)) {}

    [[nodiscard]] Milliseconds timeout() const { return _timeout; }

    [[nodiscard]] int cancelDescriptor() const { return _cancelDescriptor; }

    /// What is left as poll(2) takes it, in milliseconds, rounded up: 0 only when the moment has
    /// passed.
    [[nodiscard]] int leftMs() const {
        const auto left = std::chrono::ceil<Milliseconds>(_end - Clock::now()).count();
        using Count = decltype(left);
        return static_cast<int>(std::clamp<Count>(left, 0, std::numeric_limits<int>::max()));
    }

    void tellWait() const {
        if (_waitListener) {
            _waitListener(_timeout - Milliseconds(leftMs()));
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    Milliseconds _timeout;
    Clock::time_point _end;
    int _cancelDescriptor;
    std::function<void(Milliseconds)> _waitListener;
};

}  // namespace reticle
