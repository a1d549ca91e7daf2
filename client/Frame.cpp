#include "client/Frame.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "reticle-client/Errors.h"

namespace reticle {

namespace {

constexpr unsigned BITS_PER_BYTE = 8;

std::string syncSequence() {
    std::string sequence(FRAME_SYNC_BYTES, '\0');
    std::iota(sequence.begin(), sequence.end(), '\0');
    return sequence;
}

std::string encodeLength(std::size_t length) {
    std::string bytes;
    for (unsigned byte = FRAME_HEADER_BYTES - FRAME_SYNC_BYTES; byte-- > 0;) {
        bytes += static_cast<char>((length >> (byte * BITS_PER_BYTE)) & 0xFFU);
    }
    return bytes;
}

std::uint32_t decodeLength(std::string_view bytes) {
    std::uint32_t length = 0;
    for (const char byte : bytes) {
        length = (length << BITS_PER_BYTE) | static_cast<unsigned char>(byte);
    }
    return length;
}

/// Checks as much of the sequence as has come, so that a foreign server is told at its first bytes.
void requireSync(std::string_view header) {
    const std::string_view received = header.substr(0, FRAME_SYNC_BYTES);
    if (!syncSequence().starts_with(received)) {
        throw MalformedReply(
            "what came is not a frame of the reticle service: check that host and port are the "
            "service's");
    }
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
    return decodeLength(std::string_view(header).substr(FRAME_SYNC_BYTES));
}

}  // namespace

std::string encodeFrame(const std::string& body) {
    return syncSequence() + encodeLength(body.size()) + body;
}

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
