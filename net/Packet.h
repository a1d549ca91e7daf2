#pragma once

#include <string>
#include <utility>

namespace reticled {

/// Stands for no connection: a reply to it is dropped.
inline constexpr int NO_SOCKET = 0;

/// One JSON text on its way through the service: a client's request, then the reply to it.
/// Always handled through std::shared_ptr.
struct Packet {
    Packet(int socket, std::string data) : _socket(socket), _data(std::move(data)) {}

    int _socket;  ///< the client connection the request came from and the reply goes to; not owned
    std::string _data;  ///< the JSON text, without framing
};

}  // namespace reticled
