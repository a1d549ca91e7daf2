#pragma once

#include <cstddef>
#include <string>

#include "simulator/events/EventStream.h"
#include "simulator/link/Delivery.h"

namespace sim {

/// A device whose exchanges are events. One thread.
class ObservedDevice {
public:
    /// \param device carries out the exchanges
    /// \param events outlives this object
    ObservedDevice(ExchangeFunction device, EventStream& events);

    /// One exchange of the device. Never throws.
    [[nodiscard]] Delivery exchange(const std::string& request);

private:
    ExchangeFunction _device;
    EventStream& _events;
    std::size_t _count = 0;  ///< exchanges so far
};

}  // namespace sim
