#include "net/FrameSender.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace reticled {
namespace {

/// How often a waiting sender looks whether its client is still taking bytes.
constexpr std::chrono::milliseconds PROGRESS_CHECK_INTERVAL{500};

}  // namespace

FrameSender::FrameSender(int socket, std::chrono::milliseconds stallLimit)
    : _duplicate(dup(socket)),
      _socket(_duplicate < 0 ? socket : _duplicate),
      _stallLimit(stallLimit) {}

FrameSender::~FrameSender() {
    if (_duplicate >= 0) {
        close(_duplicate);
    }
}

int FrameSender::send(std::span<const std::uint8_t> bytes, Rest rest) {
    const int flags = MSG_NOSIGNAL | MSG_DONTWAIT | (rest == Rest::FOLLOWS ? MSG_MORE : 0);
    while (!bytes.empty()) {
        const ssize_t taken = ::send(_socket, bytes.data(), bytes.size(), flags);
        if (taken >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(taken));
        } else if (errno == EAGAIN) {
            if (!_waitForProgress()) {
                shutdown(_socket, SHUT_RDWR);
                return ETIMEDOUT;
            }
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool FrameSender::_waitForProgress() const {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + _stallLimit;
    const int notTakenAtStart = _bytesNotTaken();
    for (auto now = Clock::now(); now < deadline; now = Clock::now()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now);
        pollfd writable{.fd = _socket, .events = POLLOUT, .revents = 0};
        if (poll(&writable, 1, static_cast<int>(std::min(left, PROGRESS_CHECK_INTERVAL).count())) !=
            0) {
            return true;
        }
        // The kernel says "writable" only when a third of its buffer is free; a slow client takes
        // bytes long before that.
        if (_bytesNotTaken() < notTakenAtStart) {
            return true;
        }
    }
    return false;
}

int FrameSender::_bytesNotTaken() const {
    int bytes = 0;
    ioctl(_socket, SIOCOUTQ, &bytes);  // NOLINT(cppcoreguidelines-pro-type-vararg)
    return bytes;
}

}  // namespace reticled
