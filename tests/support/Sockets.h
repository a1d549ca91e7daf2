#pragma once

#include <cstdint>

#include "tests/support/FileDescriptor.h"

/// TCP sockets on loopback. All operations throw std::system_error when the socket cannot be had.
namespace sockets {

/// Listens on 127.0.0.1. The port is not shared (no SO_REUSEPORT). The kernel lets one connection
/// more than `backlog` wait to be accepted; others must try again.
[[nodiscard]] FileDescriptor listenOn(std::uint16_t port, int backlog = 16);

/// Connects. A `receiveBufferBytes` other than 0 makes the kernel's receive buffer that small, so
/// that little can be sent to us while we do not read.
[[nodiscard]] FileDescriptor connectTo(std::uint16_t port, int receiveBufferBytes = 0,
                                       const char* address = "127.0.0.1");

/// Begins to connect to 127.0.0.1 and does not wait: a listener with many in its queue makes the
/// kernel try again for seconds. The socket stays non-blocking.
[[nodiscard]] FileDescriptor startConnectingTo(std::uint16_t port);

}  // namespace sockets
