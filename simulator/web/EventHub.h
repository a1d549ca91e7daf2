#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/web/EventQueue.h"

namespace sim {

/// Hands each event to every browser that looks, and keeps the latest for those that come.
class EventHub {
public:
    static constexpr std::size_t MAX_BROWSERS = 8;
    static constexpr std::size_t KEPT_EVENTS = 300;
    static constexpr std::size_t KEPT_BYTES = 1'000'000;

    /// What a browser starts with.
    struct Seat {
        std::vector<std::string> past;      ///< the latest events, the oldest first
        std::shared_ptr<EventQueue> queue;  ///< all that come; null where there are browsers enough
    };

    /// Any thread; never waits for a browser.
    void publish(const std::string& event);

    /// A browser looks for as long as somebody holds its queue. Any thread.
    [[nodiscard]] Seat join();

    /// Ends all queues, those of browsers that come later as well. Any thread.
    void end();

private:
    std::mutex _mutex;
    std::vector<std::weak_ptr<EventQueue>> _queues;
    std::deque<std::string> _past;
    std::size_t _pastBytes = 0;
    bool _hasEnded = false;
};

}  // namespace sim
