#include "client/FrameCheck.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "client/FrameFormat.h"
#include "client/Request.h"

namespace reticle {

namespace {

constexpr const char* WRITE_SYNC = "begin each frame with the bytes 00 01 02 ... 1F";
constexpr std::size_t LAST_SYNC = FRAME_SYNC_BYTES - 1;
/// So large a length has more likely been written the other way round.
constexpr std::uint32_t UNLIKELY = 0x1000000U;
constexpr std::uint32_t FIRST_NEGATIVE = 0x80000000U;

std::size_t valueAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

std::string hex(std::size_t value) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    constexpr std::size_t BASE = 16;
    return {DIGITS[value / BASE], DIGITS[value % BASE]};
}

bool isPrintable(std::size_t value) {
    constexpr std::size_t DELETE_CHARACTER = 0x7F;
    return value >= ' ' && value < DELETE_CHARACTER;
}

/// \return the size of `sync` when there is none.
std::size_t firstWrong(std::string_view sync) {
    std::size_t at = 0;
    while (at < sync.size() &&
           (valueAt(sync, at) == at || (valueAt(sync, at) == 0 && at != LAST_SYNC))) {
        ++at;
    }
    return at;
}

/// Whether the bytes from `from` on, and there are two at least, are those that belong `distance`
/// places further on. The last place is left out: behind a gap the length has begun there.
bool isShifted(std::string_view sync, std::size_t from, int distance) {
    const std::size_t end = std::min(sync.size(), LAST_SYNC);
    std::size_t at = from;
    while (at < end && static_cast<int>(valueAt(sync, at)) == static_cast<int>(at) + distance) {
        ++at;
    }
    return at == end && end >= from + 2;
}

std::string describe(std::string_view sync, std::size_t wrong) {
    const std::size_t value = valueAt(sync, wrong);
    if (isShifted(sync, wrong, 1)) {
        return sync.size() == FRAME_SYNC_BYTES && valueAt(sync, LAST_SYNC) == LAST_SYNC + 1
                   ? "the sync bytes count from 01 to 20"
                   : "sync byte " + hex(wrong) + " is missing, those behind it are shifted by one";
    }
    if (isShifted(sync, wrong + 1, -1)) {
        return "a byte too many stands before sync byte " + hex(wrong) +
               ", those behind it are shifted by one";
    }
    return "byte " + std::to_string(wrong) + " of the frame is " + hex(value) + ", not " +
           hex(wrong);
}

std::string announced(std::uint32_t bodyBytes) {
    return std::to_string(bodyBytes) + " bytes announced";
}

bool isTaken(std::uint32_t bodyBytes) {
    return bodyBytes > 0 && bodyBytes < REQUEST_LIMIT_BYTES;
}

std::optional<Mistake> findLengthMistake(std::uint32_t bodyBytes) {
    if (isTaken(bodyBytes)) {
        return std::nullopt;
    }
    if (bodyBytes >= UNLIKELY && isTaken(theOtherWayRound(bodyBytes))) {
        return Mistake{announced(bodyBytes) + ", " + std::to_string(theOtherWayRound(bodyBytes)) +
                           " the other way round",
                       "write the length with its most significant byte first"};
    }
    if (bodyBytes == 0) {
        return Mistake{announced(bodyBytes), "write the length of the body, and send a body"};
    }
    return Mistake{
        announced(bodyBytes) +
            (bodyBytes >= FIRST_NEGATIVE ? ", which the service takes for a negative number" : ""),
        "send a body of less than " + std::to_string(REQUEST_LIMIT_BYTES) + " bytes"};
}

}  // namespace

std::optional<Mistake> findSyncMistake(std::string_view bytes) {
    const std::string_view sync = bytes.substr(0, FRAME_SYNC_BYTES);
    const std::size_t wrong = firstWrong(sync);
    if (wrong == sync.size()) {
        return std::nullopt;
    }
    if (wrong == 0 && isPrintable(valueAt(sync, 0))) {
        return Mistake{std::string("starts with '") + sync[0] + "': no header",
                       "put a header of 36 bytes in front of each body"};
    }
    return Mistake{describe(sync, wrong), WRITE_SYNC};
}

std::optional<Mistake> findHeaderMistake(std::string_view bytes) {
    const auto mistake = findSyncMistake(bytes);
    return mistake || bytes.size() < FRAME_HEADER_BYTES
               ? mistake
               : findLengthMistake(announcedBodyBytes(bytes));
}

std::uint32_t theOtherWayRound(std::uint32_t bodyBytes) {
    const FrameHeader header = frameHeader(bodyBytes);
    return announcedBodyBytes(
        std::string(header.rbegin(), header.rbegin() + (FRAME_HEADER_BYTES - FRAME_SYNC_BYTES))
            .insert(0, FRAME_SYNC_BYTES, '\0'));
}

}  // namespace reticle
