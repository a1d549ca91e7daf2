#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace sim {

/// What one browser still has to get.
class EventQueue {
public:
    static constexpr std::size_t MAX_EVENTS = 1000;
    static constexpr std::size_t MAX_BYTES = 8'000'000;

    /// Adds an event, and ends the queue where it would hold more than it may: its browser lags.
    /// Any thread; never waits.
    void push(const std::string& event);

    /// Waits for an event until `bound` has passed.
    /// \return none where none came, or the queue has ended
    [[nodiscard]] std::optional<std::string> pop(std::chrono::milliseconds bound);

    /// What is in the queue is not handed out any more. Any thread.
    void end();

    [[nodiscard]] bool hasEnded() const;

private:
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<std::string> _events;
    std::size_t _bytes = 0;  ///< of `_events`
    bool _hasEnded = false;
};

}  // namespace sim
