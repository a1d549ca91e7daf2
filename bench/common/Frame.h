#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace reticled::bench {

inline constexpr std::size_t FRAME_HEADER_BYTES = 36;

/// The sync bytes and the body's length, as both sides of a client connection send them.
using FrameHeader = std::array<char, FRAME_HEADER_BYTES>;

[[nodiscard]] FrameHeader makeFrameHeader(std::size_t bodySize);

/// Receives one frame with the service's two calls, one for the header, one for the body.
/// \return the body; nothing at the connection's end.
[[nodiscard]] std::optional<std::string> receiveFrame(int connection);

/// Sends header and body without putting them together first. Blocks until all is out.
/// \throws std::system_error
void sendFrame(int connection, std::string_view body);

}  // namespace reticled::bench
