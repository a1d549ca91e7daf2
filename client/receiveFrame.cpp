#include "client/receiveFrame.h"

#include <string_view>

#include "client/FrameCheck.h"
#include "client/FrameFormat.h"
#include "reticle-client/Errors.h"

namespace reticle {

namespace {

/// Checks as much of the sequence as has come, so that a foreign server is told at its first bytes.
void requireSync(std::string_view header) {
    if (isFrameBegin(header)) {
        return;
    }
    const auto mistake = findSyncMistake(header);
    throw MalformedReply("what came is not a frame of the reticle service" +
                         (mistake ? " (" + mistake->what + ")" : "") +
                         ": check that host and port are the service's");
}

void receiveUpTo(std::string& text, std::size_t size, Connection& connection,
                 const Deadline& deadline) {
    if (connection.receive(text, size - text.size(), deadline) == 0) {
        throw MalformedReply("the reply was cut off by " + connection.peer() +
                             ": check that the reticle service still runs, and its log");
    }
}

void receiveFirst(std::string& text, Connection& connection, const Deadline& deadline) {
    if (connection.receive(text, FRAME_HEADER_BYTES, deadline) == 0) {
        throw NoReply(
            connection.peer() +
            " closed the connection without a reply: check that the reticle service still "
            "runs, and its log");
    }
}

std::uint32_t receiveHeader(Connection& connection, const Deadline& deadline) {
    std::string header;
    receiveFirst(header, connection, deadline);
    requireSync(header);
    while (header.size() < FRAME_HEADER_BYTES) {
        receiveUpTo(header, FRAME_HEADER_BYTES, connection, deadline);
        requireSync(header);
    }
    return announcedBodyBytes(header);
}

}  // namespace

std::string receiveFrame(Connection& connection, const Deadline& deadline) {
    const std::uint32_t length = receiveHeader(connection, deadline);
    if (length > FRAME_BODY_LIMIT_BYTES) {
        throw MalformedReply("the reply announces " + std::to_string(length) +
                             " bytes, which no device can hold: check that host and port are the "
                             "service's");
    }
    std::string body;
    while (body.size() < length) {
        receiveUpTo(body, length, connection, deadline);
    }
    return body;
}

}  // namespace reticle
