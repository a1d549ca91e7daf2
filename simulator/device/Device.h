#pragma once

#include <json/value.h>

#include <cstddef>
#include <string>

#include "simulator/device/Answer.h"
#include "simulator/device/ReticleList.h"
#include "simulator/device/Storage.h"

namespace sim {

/// How much a device takes; an addition or update beyond is refused.
struct Limits {
    std::size_t reticles = 32;
    std::size_t bytes = 64'000'000;  ///< of the list file and all reticles' data together
};

/// The device's real-time side: keeps the reticles and carries out the service's messages.
///
/// A change is on the storage when the answer is given; a change that fails leaves everything as
/// it was. One thread.
class Device {
public:
    /// Takes up the state on `storage`, or the factory set where there is none.
    /// \param storage outlives the device
    /// \throws std::runtime_error when the state cannot be read or written, or is beyond `limits`.
    Device(Storage& storage, const Limits& limits);

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
    [[nodiscard]] Answer _store(ReticleList next);
    void _change(ReticleList next);

    Storage& _storage;
    Limits _limits;
    ReticleList _reticles;
};

}  // namespace sim
