#pragma once

#include <cstdint>

inline constexpr std::uint16_t CLIENT_PORT = 3451;
inline constexpr std::uint16_t RTOS_PORT = 3425;

/// Whether any process of the sandbox listens on `port`. Asked of the kernel, not by connecting:
/// a service would see a connection.
[[nodiscard]] bool isListening(std::uint16_t port);

/// Whether any process of the sandbox has begun to connect to `port` and waits.
[[nodiscard]] bool isBeingCalled(std::uint16_t port);
