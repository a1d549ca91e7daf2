#include "simulator/web/EventHub.h"

namespace sim {

void EventHub::publish(const std::string& event) {
    const std::lock_guard lock(_mutex);
    for (const std::weak_ptr<EventQueue>& browser : _queues) {
        if (const auto queue = browser.lock()) {
            queue->push(event);
        }
    }
    _past.push_back(event);
    _pastBytes += event.size();
    while (_past.size() > KEPT_EVENTS || _pastBytes > KEPT_BYTES) {
        _pastBytes -= _past.front().size();
        _past.pop_front();
    }
}

EventHub::Seat EventHub::join() {
    const std::lock_guard lock(_mutex);
    std::erase_if(_queues, [](const std::weak_ptr<EventQueue>& queue) { return queue.expired(); });
    if (_hasEnded || _queues.size() >= MAX_BROWSERS) {
        return {};
    }
    Seat seat{{_past.begin(), _past.end()}, std::make_shared<EventQueue>()};
    _queues.push_back(seat.queue);
    return seat;
}

void EventHub::end() {
    const std::lock_guard lock(_mutex);
    _hasEnded = true;
    for (const std::weak_ptr<EventQueue>& browser : _queues) {
        if (const auto queue = browser.lock()) {
            queue->end();
        }
    }
}

}  // namespace sim
