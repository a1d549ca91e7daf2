#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "client/Connection.h"
#include "client/Deadline.h"

namespace reticle {

/// What both sides send: the bytes 0x00 to 0x1F in ascending order, the body's length in bytes
/// (4 bytes, most significant first), the body.
constexpr std::size_t FRAME_SYNC_BYTES = 32;
constexpr std::size_t FRAME_HEADER_BYTES = 36;

/// The longest body that is read: more than any device can hold, and less than what harms a client.
constexpr std::uint32_t FRAME_BODY_LIMIT_BYTES = 1U << 30U;

/// \param body shorter than 4 GiB.
[[nodiscard]] std::string encodeFrame(const std::string& body);

/// Receives one whole frame and returns its body. Memory grows with what has come, not with what
/// the header announces. \throws NoReply when the frame is not complete in time, or the peer closes
/// before its first byte;
///         MalformedReply when the peer closes within the frame, or sends something else.
[[nodiscard]] std::string receiveFrame(Connection& connection, const Deadline& deadline);

}  // namespace reticle
