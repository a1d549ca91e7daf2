#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "client/Mistake.h"

namespace reticle {

/// What is wrong with the sync sequence of a frame, and in what way it has likely been made.
/// Any thread, as all that follow.
/// \param bytes what has come of a frame: as much as there is of the sequence is judged.
/// \return nothing when the service would take it, as it takes zeros in place of most sync bytes.
[[nodiscard]] std::optional<Mistake> findSyncMistake(std::string_view bytes);

/// The same for all that stands in front of a request's body: a header with a mistake costs the
/// connection its 36 bytes, and what follows is read as the next header.
/// \param bytes as above; the length is judged once the header is whole.
[[nodiscard]] std::optional<Mistake> findHeaderMistake(std::string_view bytes);

/// The length as a header would have it whose author began with the least significant byte.
[[nodiscard]] std::uint32_t theOtherWayRound(std::uint32_t bodyBytes);

}  // namespace reticle
