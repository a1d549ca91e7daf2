#pragma once

#include <string>

namespace reticled::bench {

/// Where every contender listens for clients.
inline constexpr int CLIENT_PORT = 3451;
/// Where the RTOS listens.
inline constexpr int RTOS_PORT = 3425;

/// \return `result`.
/// \throws std::system_error naming `what`, from errno, when `result` is negative.
int check(int result, const std::string& what);

/// Opens a listening socket on all IPv4 addresses, with the service's 4 MiB receive buffer and with
/// TCP_NODELAY, both of which accepted connections inherit.
/// \throws std::system_error
[[nodiscard]] int listenOn(int port);

/// \throws std::system_error
[[nodiscard]] int acceptFrom(int listener);

/// Connects to a port of this host once.
/// \return the connection, with TCP_NODELAY; -1 when nobody listens.
/// \throws std::system_error on any other failure.
[[nodiscard]] int tryConnect(int port);

/// Connects to a port of this host as soon as somebody listens there.
/// \throws std::runtime_error after 10 s, std::system_error
[[nodiscard]] int connectTo(int port);

}  // namespace reticled::bench
