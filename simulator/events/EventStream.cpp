#include "simulator/events/EventStream.h"

#include <utility>

namespace sim {

void EventStream::subscribe(Subscriber subscriber) {
    _subscribers.push_back(std::move(subscriber));
}

void EventStream::publish(Event::What what) {
    const Event event{++_count, std::chrono::system_clock::now(), std::move(what)};
    for (const Subscriber& subscriber : _subscribers) {
        subscriber(event);
    }
}

}  // namespace sim
