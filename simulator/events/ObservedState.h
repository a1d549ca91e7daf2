#pragma once

#include "simulator/device/Device.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/events/EventStream.h"

namespace sim {

/// Looks whether reticles and armed faults are others than before, and makes events of it.
/// One thread.
class ObservedState {
public:
    /// All arguments outlive this object.
    ObservedState(const Device& device, const FaultyDevice& faulty, EventStream& events);

    /// To be called after each thing that may have changed them.
    /// \param isByUser whether the device's user has, not the service
    void tell(bool isByUser);

private:
    const Device& _device;
    const FaultyDevice& _faulty;
    EventStream& _events;
    ReticleList _reticles;  ///< as last told
    std::vector<Fault> _faults;
};

}  // namespace sim
