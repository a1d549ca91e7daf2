#include "simulator/events/ObservedState.h"

namespace sim {

ObservedState::ObservedState(const Device& device, const FaultyDevice& faulty, EventStream& events)
    : _device(device),
      _faulty(faulty),
      _events(events),
      _reticles(device.reticles()),
      _faults(faulty.faults()) {}

void ObservedState::tell(bool isByUser) {
    if (_reticles != _device.reticles()) {
        _reticles = _device.reticles();
        _events.publish(Changed{_reticles, isByUser});
    }
    if (_faults != _faulty.faults()) {
        _faults = _faulty.faults();
        _events.publish(FaultsArmed{faultTexts(_faults)});
    }
}

}  // namespace sim
