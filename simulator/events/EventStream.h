#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "simulator/events/Event.h"

namespace sim {

/// Tells everybody who looks what happens in the simulator, one event after the other.
/// One thread.
class EventStream {
public:
    /// Must neither wait nor throw nor publish.
    using Subscriber = std::function<void(const Event& event)>;

    /// \param subscriber told each event from now on, for the life of the stream
    void subscribe(Subscriber subscriber);

    void publish(Event::What what);

private:
    std::vector<Subscriber> _subscribers;
    std::size_t _count = 0;  ///< events so far
};

}  // namespace sim
