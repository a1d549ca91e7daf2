#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace reticled::bench {

/// Receives one frame with the service's two calls, one for the header, one for the body.
/// \return the body; nothing at the connection's end.
[[nodiscard]] std::optional<std::string> receiveFrame(int connection);

/// Sends header and body without putting them together first. Blocks until all is out.
/// \throws std::system_error
void sendFrame(int connection, std::string_view body);

}  // namespace reticled::bench
