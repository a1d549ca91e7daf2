#pragma once

#include <filesystem>
#include <string>

#include "simulator/device/ReticleList.h"

namespace sim {

/// The data of a reticle with the user's colour in the place of each user_color that stands in double quotes: what a
/// client gets, but for a colour with a `$`, in which the service sees escapes.
/// \param root directory of the shared storage
/// \throws std::runtime_error, with a text for people, where there is no such reticle or file, or the
///         picture would be too large to be looked at.
[[nodiscard]] std::string reticlePicture(const ReticleList& list, const std::filesystem::path& root,
                                         int index);

}  // namespace sim
