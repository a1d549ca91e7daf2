#include "client/FrameFormat.h"

#include <numeric>

namespace reticle {

namespace {

constexpr unsigned BITS_PER_BYTE = 8;

}  // namespace

FrameHeader frameHeader(std::size_t bodyBytes) {
    FrameHeader header{};
    std::iota(header.begin(), header.begin() + FRAME_SYNC_BYTES, '\0');
    for (std::size_t at = FRAME_HEADER_BYTES; at-- > FRAME_SYNC_BYTES;) {
        header.at(at) = static_cast<char>(bodyBytes);
        bodyBytes >>= BITS_PER_BYTE;
    }
    return header;
}

std::string encodeFrame(std::string_view body) {
    const FrameHeader header = frameHeader(body.size());
    return std::string(header.begin(), header.end()).append(body);
}

bool isFrameBegin(std::string_view bytes) {
    const FrameHeader header = frameHeader(0);
    const std::string_view sync(header.data(), FRAME_SYNC_BYTES);
    return sync.starts_with(bytes.substr(0, FRAME_SYNC_BYTES));
}

std::uint32_t announcedBodyBytes(std::string_view header) {
    std::uint32_t length = 0;
    for (const char byte : header.substr(FRAME_SYNC_BYTES, FRAME_HEADER_BYTES - FRAME_SYNC_BYTES)) {
        length = (length << BITS_PER_BYTE) | static_cast<unsigned char>(byte);
    }
    return length;
}

}  // namespace reticle
