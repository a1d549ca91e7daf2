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
    auto deadline = Clock::now() + _stallLimit;
    while (!bytes.empty()) {
        const ssize_t taken = ::send(_socket, bytes.data(), bytes.size(), flags);
        if (taken >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(taken));
            deadline = Clock::now() + _stallLimit;
        } else if (errno == EAGAIN) {
            if (_waitForRoom(deadline)) {
                deadline = Clock::now() + _stallLimit;
            } else if (Clock::now() >= deadline) {
                shutdown(_socket, SHUT_RDWR);
                return ETIMEDOUT;
            }
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool FrameSender::_waitForRoom(Clock::time_point deadline) const {
    const int notTakenBefore = _bytesNotTaken();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const auto pause = std::clamp(left, std::chrono::milliseconds{0}, PROGRESS_CHECK_INTERVAL);
    pollfd writable{.fd = _socket, .events = POLLOUT, .revents = 0};
    poll(&writable, 1, static_cast<int>(pause.count()));
    // Asked apart from the poll: the kernel says "writable" only when a third of its buffer is free, a
    // slow client takes bytes long before that.
    return _bytesNotTaken() < notTakenBefore;
}

int FrameSender::_bytesNotTaken() const {
    int bytes = 0;
    ioctl(_socket, SIOCOUTQ, &bytes);  // NOLINT(cppcoreguidelines-pro-type-vararg)
    return bytes;
}

}  // namespace reticled
