#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "simulator/base/FileChange.h"
#include "simulator/device/ReticleList.h"
#include "simulator/link/Delivery.h"

namespace sim {

/// A request of the service has come.
struct Received {
    std::size_t exchange = 0;  ///< counted from 1 over the run
    std::string_view request;  ///< valid while the event is being told
};

/// The device has decided how it answers; spoiled where the delivery names faults.
struct Answered {
    std::size_t exchange = 0;
    std::string_view request;  ///< valid while the event is being told
    Delivery delivery;
    std::chrono::milliseconds time{0};  ///< from the request until the answer begins to go out
};

/// The device's reticles are others than before.
struct Changed {
    ReticleList reticles;
    bool isByUser = false;  ///< by the device's own user, not by the service
};

/// Other faults than before are armed.
struct FaultsArmed {
    std::vector<std::string> faults;  ///< as --fault takes them
};

/// The device has gone away or come back.
struct PowerSwitched {
    bool isUp = false;
};

/// One thing that happened in the simulator.
struct Event {
    using What = std::variant<Received, Answered, FileChange, Changed, FaultsArmed, PowerSwitched>;

    std::size_t number = 0;  ///< counted from 1 over the run
    std::chrono::system_clock::time_point time;
    What what;
};

}  // namespace sim
