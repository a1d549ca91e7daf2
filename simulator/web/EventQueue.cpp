#include "simulator/web/EventQueue.h"

#include <utility>

namespace sim {

void EventQueue::push(const std::string& event) {
    const std::lock_guard lock(_mutex);
    if (_hasEnded) {
        return;
    }
    _events.push_back(event);
    _bytes += event.size();
    _hasEnded = _events.size() > MAX_EVENTS || _bytes > MAX_BYTES;
    _changed.notify_one();
}

std::optional<std::string> EventQueue::pop(std::chrono::milliseconds bound) {
    std::unique_lock lock(_mutex);
    _changed.wait_for(lock, bound, [this] { return _hasEnded || !_events.empty(); });
    if (_hasEnded || _events.empty()) {
        return std::nullopt;
    }
    std::string event = std::move(_events.front());
    _events.pop_front();
    _bytes -= event.size();
    return event;
}

void EventQueue::end() {
    const std::lock_guard lock(_mutex);
    _hasEnded = true;
    _changed.notify_one();
}

bool EventQueue::hasEnded() const {
    const std::lock_guard lock(_mutex);
    return _hasEnded;
}

}  // namespace sim
