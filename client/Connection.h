#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "client/Deadline.h"
#include "client/Socket.h"

namespace reticle {

/// A TCP connection whose every wait ends at a deadline, or with Cancelled. One thread at a time.
class Connection {
public:
    /// Connects to the first address of `host` that answers. The look-up of a host name has
    /// time-outs of its own, outside the deadline; a numeric address needs none. \throws
    /// CannotConnect.
    Connection(const std::string& host, std::uint16_t port, const Deadline& deadline);

    /// Hears how many bytes of a text have been taken so far.
    using SentListener = std::function<void(std::size_t sentBytes)>;

    /// Sends all of `bytes`. \param listener told after each piece, when there is one.
    /// \throws NoReply when the peer does not take them in time, or is gone.
    void send(std::string_view bytes, const Deadline& deadline, const SentListener& listener = {});

    /// Waits for bytes and appends what has come, at most `atMost`, to `text`.
    /// \return how many there were, 0 when the peer has closed or reset the connection.
    /// \throws NoReply when none come in time.
    [[nodiscard]] std::size_t receive(std::string& text, std::size_t atMost,
                                      const Deadline& deadline);

    /// "HOST:PORT", for messages.
    [[nodiscard]] const std::string& peer() const { return _peer; }

private:
    void _waitFor(short events, const Deadline& deadline) const;

    std::string _peer;
    Socket _socket;
};

}  // namespace reticle
