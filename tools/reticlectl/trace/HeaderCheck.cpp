#include "tools/reticlectl/trace/HeaderCheck.h"

#include <string>

#include "client/FrameCheck.h"
#include "client/FrameFormat.h"
#include "client/Request.h"

namespace reticlectl {

namespace {

/// So large a length has more likely been written the other way round.
constexpr std::uint32_t UNLIKELY = 0x1000000U;
constexpr std::uint32_t FIRST_NEGATIVE = 0x80000000U;

std::string announced(std::uint32_t bodyBytes) {
    return std::to_string(bodyBytes) + " bytes announced";
}

bool isTaken(std::uint32_t bodyBytes) {
    return bodyBytes > 0 && bodyBytes < reticle::REQUEST_LIMIT_BYTES;
}

std::optional<reticle::Mistake> findLengthMistake(std::uint32_t bodyBytes) {
    if (isTaken(bodyBytes)) {
        return std::nullopt;
    }
    if (bodyBytes >= UNLIKELY && isTaken(theOtherWayRound(bodyBytes))) {
        return reticle::Mistake{announced(bodyBytes) + ", " +
                                    std::to_string(theOtherWayRound(bodyBytes)) +
                                    " the other way round",
                                "write the length with its most significant byte first"};
    }
    if (bodyBytes == 0) {
        return reticle::Mistake{announced(bodyBytes),
                                "write the length of the body, and send a body"};
    }
    return reticle::Mistake{
        announced(bodyBytes) +
            (bodyBytes >= FIRST_NEGATIVE ? ", which the service takes for a negative number" : ""),
        "send a body of less than " + std::to_string(reticle::REQUEST_LIMIT_BYTES) + " bytes"};
}

}  // namespace

std::optional<reticle::Mistake> findHeaderMistake(std::string_view bytes) {
    const auto mistake = reticle::findSyncMistake(bytes);
    return mistake || bytes.size() < reticle::FRAME_HEADER_BYTES
               ? mistake
               : findLengthMistake(reticle::announcedBodyBytes(bytes));
}

std::uint32_t theOtherWayRound(std::uint32_t bodyBytes) {
    const reticle::FrameHeader header = reticle::frameHeader(bodyBytes);
    return reticle::announcedBodyBytes(
        std::string(header.rbegin(),
                    header.rbegin() + (reticle::FRAME_HEADER_BYTES - reticle::FRAME_SYNC_BYTES))
            .insert(0, reticle::FRAME_SYNC_BYTES, '\0'));
}

}  // namespace reticlectl
