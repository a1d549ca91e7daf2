#include "client/FrameCheck.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "client/FrameFormat.h"

namespace reticle {

namespace {

constexpr const char* WRITE_SYNC = "begin each frame with the bytes 00 01 02 ... 1F";
constexpr std::size_t LAST_SYNC = FRAME_SYNC_BYTES - 1;

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

}  // namespace reticle
