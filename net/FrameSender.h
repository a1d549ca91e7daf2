#pragma once

#include <chrono>
#include <cstdint>
#include <span>

namespace reticled {

/// How long a client may take not one byte of a reply before it loses the rest of it.
inline constexpr std::chrono::seconds STALL_LIMIT{30};

/// Sends one frame to a client, however slowly the client reads, without ever waiting for a client
/// that has stopped reading.
///
/// Keeps the connection open from construction to destruction with a descriptor of its own: when
/// the client leaves meanwhile, its number may be given to a new client, who must not get the rest.
/// (Without a descriptor to spare it uses the client's own, and takes that risk.)
class FrameSender {
public:
    /// Whether more of the frame is to come at once: the kernel then waits with a small segment.
    enum class Rest { NONE, FOLLOWS };

    /// \param socket a client connection; not owned. One that is already closed makes send fail.
    /// \param stallLimit see STALL_LIMIT.
    explicit FrameSender(int socket, std::chrono::milliseconds stallLimit = STALL_LIMIT);

    FrameSender(const FrameSender&) = delete;
    FrameSender& operator=(const FrameSender&) = delete;
    ~FrameSender();

    /// Sends all of `bytes`, the frame or its next part; blocks as long as the client goes on
    /// taking bytes. A client that stalls is shut down, so that its reader thread ends the
    /// connection. Response thread only.
    /// \return 0 or the errno value of what ended it, ETIMEDOUT for a client that stalled.
    [[nodiscard]] int send(std::span<const std::uint8_t> bytes, Rest rest = Rest::NONE);

private:
    using Clock = std::chrono::steady_clock;

    /// Waits a moment for room in the kernel's buffer. \return whether the client took something.
    [[nodiscard]] bool _waitForRoom(Clock::time_point deadline) const;

    [[nodiscard]] int _bytesNotTaken() const;

    int _duplicate;  ///< -1 when there was no descriptor to spare
    int _socket;
    std::chrono::milliseconds _stallLimit;
};

}  // namespace reticled
