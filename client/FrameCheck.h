#pragma once

#include <optional>
#include <string_view>

#include "client/Mistake.h"

namespace reticle {

/// What is wrong with the sync sequence of a frame, and in what way it has likely been made.
/// Any thread.
/// \param bytes what has come of a frame: as much as there is of the sequence is judged.
/// \return nothing when the service would take it, as it takes zeros in place of most sync bytes.
[[nodiscard]] std::optional<Mistake> findSyncMistake(std::string_view bytes);

}  // namespace reticle
