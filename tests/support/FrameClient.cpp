#include "tests/support/FrameClient.h"

#include <stdexcept>

namespace {

constexpr std::string_view SYNC{
    "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F"
    "\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F",
    32};
constexpr std::size_t LENGTH_BYTES = 4;
constexpr unsigned BITS_PER_BYTE = 8;

std::size_t lengthIn(std::string_view header) {
    std::size_t length = 0;
    for (const char byte : header.substr(SYNC.size())) {
        length = (length << BITS_PER_BYTE) | static_cast<unsigned char>(byte);
    }
    return length;
}

}  // namespace

std::string FrameClient::header(std::uint32_t bodyBytes) {
    std::string header(SYNC);
    for (unsigned shift = LENGTH_BYTES * BITS_PER_BYTE; shift > 0; shift -= BITS_PER_BYTE) {
        header += static_cast<char>(bodyBytes >> (shift - BITS_PER_BYTE));
    }
    return header;
}

void FrameClient::sendFrame(std::string_view body) {
    _connection.send(header(static_cast<std::uint32_t>(body.size())) + std::string(body));
}

std::string FrameClient::readReply(std::chrono::milliseconds bound) {
    const std::string header = _connection.receive(SYNC.size() + LENGTH_BYTES, bound);
    if (header.size() < SYNC.size() + LENGTH_BYTES) {
        throw std::runtime_error("no reply");
    }
    if (!header.starts_with(SYNC)) {
        throw std::runtime_error("a reply without the sync sequence");
    }
    std::string body = _connection.receive(lengthIn(header), bound);
    if (body.size() < lengthIn(header)) {
        throw std::runtime_error("a reply cut short after " + std::to_string(body.size()) + " of " +
                                 std::to_string(lengthIn(header)) + " bytes");
    }
    return body;
}
