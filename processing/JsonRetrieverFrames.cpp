// The part of JsonRetriever that reads and builds client frames.
#include <iostream>
#include <numeric>

#include "base/Log.h"
#include "processing/JsonRetriever.h"

namespace reticled {
namespace {

/// Intended: a zero is taken for any sync byte but the last.
bool isSync(const std::uint8_t* header) {
    constexpr int last = FRAME_SYNC_SIZE - 1;
    for (int i = 0; i < last; ++i) {
        if (header[i] != i && header[i] != 0) {
            return false;
        }
    }
    return header[last] == last;
}

}  // namespace

int JsonRetriever::getPacketLength(const std::uint8_t* header) {
    if (!isSync(header)) {
        return 0;
    }
    std::uint32_t length = 0;
    for (int i = FRAME_SYNC_SIZE; i < FRAME_HEADER_SIZE; ++i) {
        length = length << 8U | header[i];
    }
    logLine(std::cout, "total cnt = ", FRAME_SYNC_SIZE);
    logLine(std::cout, "json is true, length = ", length);
    return static_cast<int>(length);
}

std::array<std::uint8_t, FRAME_HEADER_SIZE> JsonRetriever::buildNetHeader(std::size_t bodySize) {
    std::array<std::uint8_t, FRAME_HEADER_SIZE> header{};
    std::iota(header.begin(), header.begin() + FRAME_SYNC_SIZE, std::uint8_t{0});
    for (std::size_t i = FRAME_HEADER_SIZE; i > FRAME_SYNC_SIZE; bodySize >>= 8U) {
        header.at(--i) = static_cast<std::uint8_t>(bodySize);
    }
    return header;
}

std::vector<std::uint8_t> JsonRetriever::buildNetPacket(const std::string& body) {
    const auto header = buildNetHeader(body.size());
    std::vector<std::uint8_t> frame;
    frame.reserve(header.size() + body.size());
    frame.assign(header.begin(), header.end());
    frame.insert(frame.end(), body.begin(), body.end());
    return frame;
}

}  // namespace reticled
