#pragma once

#include <json/value.h>

#include <filesystem>

#include "simulator/control/CommandForm.h"
#include "simulator/session/ReplayDevice.h"

namespace sim {

/// Carries out one command on a replayed device, which nobody can change.
/// \return the status, the only one that makes sense
/// \throws std::runtime_error, with a text for people, for all others.
[[nodiscard]] Json::Value replayCommand(const Words& words, const ReplayDevice& device,
                                        const std::filesystem::path& root);

}  // namespace sim
