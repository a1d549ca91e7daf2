#pragma once

#include <cstdint>
#include <string>

#include "client/Connection.h"
#include "client/Deadline.h"

namespace reticle {

/// The longest body that is read: more than any device can hold, and less than what harms a client.
constexpr std::uint32_t FRAME_BODY_LIMIT_BYTES = 1U << 30U;

/// Receives one whole frame and returns its body. Memory grows with what has come, not with what
/// the header announces. \throws NoReply when the frame is not complete in time, or the peer closes
/// before its first byte;
///         MalformedReply when the peer closes within the frame, or sends something else.
[[nodiscard]] std::string receiveFrame(Connection& connection, const Deadline& deadline);

}  // namespace reticle
