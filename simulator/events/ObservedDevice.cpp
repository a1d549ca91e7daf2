#include "simulator/events/ObservedDevice.h"

#include <chrono>
#include <utility>

namespace sim {

ObservedDevice::ObservedDevice(ExchangeFunction device, EventStream& events)
    : _device(std::move(device)), _events(events) {}

Delivery ObservedDevice::exchange(const std::string& request) {
    using std::chrono::steady_clock;
    ++_count;
    _events.publish(Received{_count, request});
    const steady_clock::time_point start = steady_clock::now();
    Delivery delivery = _device(request);
    const auto time =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    _events.publish(Answered{_count, request, delivery, time + delivery.delay});
    return delivery;
}

}  // namespace sim
