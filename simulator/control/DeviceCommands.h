#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <string>

#include "simulator/control/CommandForm.h"
#include "simulator/device/Device.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "simulator/events/EventStream.h"
#include "simulator/events/ObservedState.h"
#include "simulator/link/Server.h"

namespace sim {

/// What people do to a device while it runs: its own user and factory, and who has it fail.
/// One thread, that of the server.
class DeviceCommands {
public:
    /// The parts of a running simulator.
    struct Parts {
        Storage& storage;
        Device& device;
        FaultyDevice& faulty;
        Server& server;
        EventStream& events;
        ObservedState& state;
    };

    /// \param parts all of them outlive this object
    explicit DeviceCommands(const Parts& parts) : _parts(parts) {}

    /// Carries out one command; a change is on the storage, and its events are published, when this
    /// returns. For "add" the last word is the data itself.
    /// \return an object: for "status" the status, after a fault command the faults that are armed,
    ///         after "restart" whether it is up, after others the reticle that was changed, or an
    ///         empty one where there is none
    /// \throws std::runtime_error, with a text for people; nothing is changed then.
    [[nodiscard]] Json::Value run(const Words& words);

private:
    [[nodiscard]] Json::Value _status(const Words& words);
    [[nodiscard]] Json::Value _fault(const Words& words);
    [[nodiscard]] Json::Value _faultsOff(const Words& words);
    [[nodiscard]] Json::Value _activate(const Words& words);
    [[nodiscard]] Json::Value _color(const Words& words);
    [[nodiscard]] Json::Value _rename(const Words& words);
    [[nodiscard]] Json::Value _add(const Words& words);
    [[nodiscard]] Json::Value _delete(const Words& words);
    [[nodiscard]] Json::Value _deletable(const Words& words);
    [[nodiscard]] Json::Value _restart(const Words& words);
    [[nodiscard]] Json::Value _reset(const Words& words);

    [[nodiscard]] std::optional<std::size_t> _exchangeIn(const std::string& when) const;
    [[nodiscard]] Json::Value _armed() const;
    [[nodiscard]] Json::Value _reticle(int index) const;

    Parts _parts;
};

}  // namespace sim
