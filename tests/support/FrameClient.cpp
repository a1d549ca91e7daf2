#include "tests/support/FrameClient.h"

#include <stdexcept>

#include "client/FrameFormat.h"

std::string FrameClient::header(std::uint32_t bodyBytes) {
    const reticle::FrameHeader header = reticle::frameHeader(bodyBytes);
    return {header.begin(), header.end()};
}

void FrameClient::sendFrame(std::string_view body) {
    _connection.send(reticle::encodeFrame(body));
}

std::string FrameClient::readReply(std::chrono::milliseconds bound) {
    const std::string header = _connection.receive(reticle::FRAME_HEADER_BYTES, bound);
    if (header.size() < reticle::FRAME_HEADER_BYTES) {
        throw std::runtime_error("no reply");
    }
    if (!reticle::isFrameBegin(header)) {
        throw std::runtime_error("a reply without the sync sequence");
    }
    const std::size_t length = reticle::announcedBodyBytes(header);
    std::string body = _connection.receive(length, bound);
    if (body.size() < length) {
        throw std::runtime_error("a reply cut short after " + std::to_string(body.size()) + " of " +
                                 std::to_string(length) + " bytes");
    }
    return body;
}
