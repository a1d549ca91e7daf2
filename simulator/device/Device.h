#pragma once

#include <json/value.h>

#include <string>

#include "simulator/device/Answer.h"
#include "simulator/device/ReticleList.h"
#include "simulator/device/Storage.h"

namespace sim {

/// The device's real-time side: keeps the reticles and carries out the service's messages.
///
/// A change is on the storage when the answer is given; a change that fails leaves everything as
/// it was. One thread.
class Device {
public:
    /// Takes up the state on `storage`, or the factory set where there is none.
    /// \param storage outlives the device
    /// \param maxReticles how many reticles it holds; an addition beyond is refused
    /// \throws std::runtime_error when the state cannot be read or written.
    Device(Storage& storage, std::size_t maxReticles);

    /// Writes the factory set over whatever state `storage` has.
    /// \throws std::runtime_error when it cannot be written.
    static void restoreFactory(Storage& storage);

    /// Carries out one request: an array of one message object.
    /// \throws std::runtime_error when the storage fails; nothing is changed then.
    [[nodiscard]] Answer answer(const Json::Value& request);

    [[nodiscard]] const ReticleList& reticles() const { return _reticles; }

private:
    [[nodiscard]] Answer _setActive(const Json::Value& message);
    [[nodiscard]] Answer _add(const Json::Value& message);
    [[nodiscard]] Answer _update(const Json::Value& message);
    [[nodiscard]] Answer _delete(const Json::Value& message);
    void _change(ReticleList next);

    Storage& _storage;
    std::size_t _maxReticles;
    ReticleList _reticles;
};

}  // namespace sim
