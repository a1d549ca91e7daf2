#pragma once

#include <json/value.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

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

    // What its user and its factory do; refused as the same message of the service would be.
    // All \throw std::runtime_error when the storage fails; nothing is changed then.
    [[nodiscard]] Answer setActive(int index);
    [[nodiscard]] Answer add(const std::string& name, std::string_view data);
    [[nodiscard]] Answer remove(int index);
    /// \param change changes anything of the reticle but its index, file and activity
    [[nodiscard]] Answer edit(int index, const std::function<void(Reticle&)>& change);

    /// Goes back to the factory set.
    /// \throws std::runtime_error also when that is beyond the limits.
    void reset();

private:
    [[nodiscard]] Answer _setActive(const Json::Value& message);
    [[nodiscard]] Answer _add(const Json::Value& message);
    [[nodiscard]] Answer _update(const Json::Value& message);
    [[nodiscard]] Answer _delete(const Json::Value& message);
    [[nodiscard]] std::optional<Answer> _checkRoom() const;
    [[nodiscard]] Answer _append(const std::string& name, const std::string& fileName);
    [[nodiscard]] Answer _store(ReticleList next);
    void _change(ReticleList next);

    Storage& _storage;
    Limits _limits;
    ReticleList _reticles;
};

}  // namespace sim
