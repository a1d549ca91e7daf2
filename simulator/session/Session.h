#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "simulator/link/Delivery.h"

namespace sim {

/// The first line of a session file; its number grows when older files can no longer be read.
inline constexpr const char* SESSION_HEAD = "rtos-sim session 1";

/// A file below the root.
struct SessionFile {
    std::string name;  ///< relative to the root, and stays inside it
    std::string text;

    bool operator==(const SessionFile&) const = default;
};

/// One request of the service and what the device does about it.
struct Exchange {
    std::size_t line = 0;              ///< of the request in the session file; 0 outside of one
    std::string request;               ///< as the service sends it
    std::vector<SessionFile> newData;  ///< what the service has written before it sends the request
    std::vector<SessionFile> files;    ///< what the device writes before it answers
    Delivery answer;
};

/// A request of a client, as far as it is known. The device never sees one.
struct ClientRequest {
    std::string text;
    std::size_t exchangesBefore = 0;  ///< how many of the session's exchanges come before it
};

/// What went between a service and a device, in its order.
struct Session {
    std::vector<Exchange> exchanges;
    std::vector<ClientRequest> clientRequests;
};

}  // namespace sim
