#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "client/Mistake.h"

namespace reticlectl {

/// What is wrong with what stands in front of a request's body, and in what way it has likely been
/// made: a header with a mistake costs the connection its 36 bytes, and what follows is read as the
/// next header. Any thread.
/// \param bytes what has come of a frame: as much as there is of a header is judged, the length once
/// the header is whole.
/// \return nothing when the service would take it.
[[nodiscard]] std::optional<reticle::Mistake> findHeaderMistake(std::string_view bytes);

/// The length as a header would have it whose author began with the least significant byte.
[[nodiscard]] std::uint32_t theOtherWayRound(std::uint32_t bodyBytes);

}  // namespace reticlectl
