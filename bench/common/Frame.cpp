#include "bench/common/Frame.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "bench/common/Sockets.h"
#include "client/FrameFormat.h"

namespace reticled::bench {
namespace {

bool receiveAll(int connection, char* buffer, std::size_t size) {
    return recv(connection, buffer, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

}  // namespace

std::optional<std::string> receiveFrame(int connection) {
    reticle::FrameHeader header{};
    if (!receiveAll(connection, header.data(), header.size())) {
        return std::nullopt;
    }
    std::string body(reticle::announcedBodyBytes({header.data(), header.size()}), '\0');
    if (!receiveAll(connection, body.data(), body.size())) {
        return std::nullopt;
    }
    return body;
}

void sendFrame(int connection, std::string_view body) {
    reticle::FrameHeader header = reticle::frameHeader(body.size());
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
