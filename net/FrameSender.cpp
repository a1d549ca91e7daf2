#include "net/FrameSender.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace reticled {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// How often a waiting sender tries again: the kernel says "writable" only when a third of its buffer
/// is free, and takes bytes long before that.
constexpr milliseconds RETRY_INTERVAL{500};
/// Before a wait that follows another: a kernel that is short of memory says "writable" and takes
/// nothing, and asking it at once would burn a core.
constexpr milliseconds REPEATED_WAIT_PAUSE{10};

void waitForRoom(int socket, milliseconds longest, bool isRepeated) {
    if (isRepeated) {
        std::this_thread::sleep_for(std::min(longest, REPEATED_WAIT_PAUSE));
    }
    pollfd writable{.fd = socket, .events = POLLOUT, .revents = 0};
    poll(&writable, 1, static_cast<int>(longest.count()));
}

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
    const int error = _sendAll(bytes, rest);
    if (error == ETIMEDOUT || (error != 0 && _isHalfWay)) {
        shutdown(_socket, SHUT_RDWR);
    }
    return error;
}

int FrameSender::_sendAll(std::span<const std::uint8_t> bytes, Rest rest) {
    const int flags = MSG_NOSIGNAL | MSG_DONTWAIT | (rest == Rest::FOLLOWS ? MSG_MORE : 0);
    auto deadline = Clock::now() + _stallLimit;
    bool hasWaited = false;
    while (!bytes.empty()) {
        const ssize_t taken = ::send(_socket, bytes.data(), bytes.size(), flags);
        if (taken >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(taken));
            _isHalfWay = true;
            deadline = Clock::now() + _stallLimit;
            hasWaited = false;
        } else if (errno == EAGAIN) {
            const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
            if (left.count() <= 0) {
                return ETIMEDOUT;
            }
            waitForRoom(_socket, std::min(left, RETRY_INTERVAL), hasWaited);
            hasWaited = true;
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace reticled
