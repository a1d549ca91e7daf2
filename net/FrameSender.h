#pragma once

#include <chrono>
#include <cstdint>
#include <span>

namespace reticled {

/// How long the kernel may find no room for a client's reply before the client loses the rest of it.
/// Clients' kernels tell in steps of what was taken: with default buffers a client that takes 135 KB
/// in this time is served to the end, one that takes 120 KB is not.
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
    /// taking bytes. A client that stalls, or whose frame fails half-way, is shut down, so that it
    /// never takes the next frame for the rest of this one, and its reader thread ends the
    /// connection. Response thread only.
    /// \return 0 or the errno value of what ended it, ETIMEDOUT for a client that stalled.
    [[nodiscard]] int send(std::span<const std::uint8_t> bytes, Rest rest = Rest::NONE);

private:
    /// As send, but leaves the connection as it is.
    [[nodiscard]] int _sendAll(std::span<const std::uint8_t> bytes, Rest rest);

    int _duplicate;  ///< -1 when there was no descriptor to spare
    int _socket;
    std::chrono::milliseconds _stallLimit;
    bool _isHalfWay = false;  ///< the client has bytes of the frame
};

}  // namespace reticled
