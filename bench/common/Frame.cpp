#include "bench/common/Frame.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <cerrno>
#include <numeric>
#include <system_error>

#include "bench/common/Sockets.h"

namespace reticled::bench {
namespace {

constexpr std::size_t SYNC_BYTES = 32;

std::size_t bodySizeOf(const FrameHeader& header) {
    std::uint32_t size = 0;
    for (std::size_t i = SYNC_BYTES; i < header.size(); ++i) {
        size = size << 8U | static_cast<std::uint8_t>(header.at(i));
    }
    return size;
}

bool receiveAll(int connection, char* buffer, std::size_t size) {
    return recv(connection, buffer, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

}  // namespace

FrameHeader makeFrameHeader(std::size_t bodySize) {
    FrameHeader header{};
    std::iota(header.begin(), header.begin() + SYNC_BYTES, '\0');
    for (std::size_t i = SYNC_BYTES; i < header.size(); ++i) {
        header.at(i) = static_cast<char>(bodySize >> (8 * (FRAME_HEADER_BYTES - 1 - i)));
    }
    return header;
}

std::optional<std::string> receiveFrame(int connection) {
    FrameHeader header{};
    if (!receiveAll(connection, header.data(), header.size())) {
        return std::nullopt;
    }
    std::string body(bodySizeOf(header), '\0');
    if (!receiveAll(connection, body.data(), body.size())) {
        return std::nullopt;
    }
    return body;
}

void sendFrame(int connection, std::string_view body) {
    FrameHeader header = makeFrameHeader(body.size());
    // The kernel only reads what the pieces point at.
    std::array<iovec, 2> pieces{
        {{header.data(), header.size()},
         {const_cast<char*>(body.data()), body.size()}}};  // NOLINT(*-const-cast)
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    const auto sent = static_cast<std::size_t>(
        check(static_cast<int>(sendmsg(connection, &message, MSG_NOSIGNAL)), "sendmsg"));
    // A blocking socket takes all of it unless a signal comes in between, and none is handled here.
    if (sent != header.size() + body.size()) {
        throw std::system_error(EINTR, std::generic_category(), "sendmsg");
    }
}

}  // namespace reticled::bench
